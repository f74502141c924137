#include "tests/screens/Interaction.h"

#include <algorithm>

namespace quillbook::test {
namespace {

using testing::ElementsAre;

// The export setup.

TEST_F(Interaction, formatsSwitchByClickAndKeys) {
    at("setup");
    QQuickItem* csv = find("QQuickSwitch", words("CSV"));
    click(csv);
    EXPECT_TRUE(adapter->includeCSV());
    EXPECT_TRUE(csv->property("checked").toBool());
    csv->forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_Space, Qt::NoModifier, words(" "));
    EXPECT_FALSE(adapter->includeCSV());
    EXPECT_FALSE(csv->property("checked").toBool());
    press(Qt::Key_Return);
    EXPECT_TRUE(adapter->includeCSV());
    EXPECT_TRUE(csv->property("checked").toBool());
}

TEST_F(Interaction, formatsFollowTheModelAfterAClick) {
    at("setup");
    QQuickItem* json = find("QQuickSwitch", words("JSON"));
    click(json);
    EXPECT_FALSE(adapter->includeJSON());
    adapter->setIncludeJSON(true);
    EXPECT_TRUE(json->property("checked").toBool());
}

TEST_F(Interaction, theLockedFormatCannotBeSwitched) {
    at("setup");
    QQuickItem* website = find("QQuickSwitch", words("Offline website"));
    EXPECT_FALSE(website->isEnabled());
    click(website);
    website->forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_Space, Qt::NoModifier, words(" "));
    EXPECT_TRUE(website->property("checked").toBool());
}

TEST_F(Interaction, theLockedFormatStaysOnWithAllOthersOff) {
    at("setup-no-formats");
    EXPECT_TRUE(find("QQuickSwitch", words("Offline website"))->property("checked").toBool());
    for (const char* each : {"JSON", "Markdown", "CSV"})
        EXPECT_FALSE(find("QQuickSwitch", words(each))->property("checked").toBool()) << each;
    pushed("Back Up Now");
    become();
    EXPECT_EQ(adapter->screen(), AppModelAdapter::Screen::complete);
}

TEST_F(Interaction, chooseAsksForAFolderAndShowsTheAnswer) {
    at("setup");
    button("Choose…")->forceActiveFocus(Qt::TabFocusReason); // And so it comes into sight.
    refresh();
    pushed("Choose…");
    EXPECT_THAT(desktop->calls, ElementsAre("choose Choose Export Folder Choose /home/ada/Downloads"));
    desktop->waiting(std::nullopt);
    become();
    EXPECT_TRUE(shows("Downloads"));
    desktop->waiting("/media/disk/Albums of Ada");
    become();
    EXPECT_TRUE(shows("Albums of Ada"));
    EXPECT_TRUE(shows("/media/disk/Albums of Ada"));
}

// The export.

TEST_F(Interaction, cancelSaysThatItCancelsUntilTheExportEnded) {
    at("setup");
    pushed("Back Up Now");
    refresh();
    pushed("Cancel");
    ASSERT_NE(button("Cancelling…"), nullptr);
    EXPECT_FALSE(button("Cancelling…")->isEnabled());
    EXPECT_EQ(button("Cancel"), nullptr);
    become();
    EXPECT_EQ(adapter->screen(), AppModelAdapter::Screen::exportSetup);
    pushed("Back Up Now");
    refresh();
    EXPECT_NE(button("Cancel"), nullptr) << "the next export begins anew";
}

TEST_F(Interaction, theBarShowsEachReportAsItIs) {
    at("setup");
    pushed("Back Up Now");
    provider->prepared().back().exporter->answer = [](const ProgressCallback& report, std::stop_token) {
        report({ExportStage::copyingAttachments, 1'204, 3'166, "IMG_0042.HEIC"});
        return ExportResult();
    };
    background->perform();
    mainThread->turnOnce();
    refresh();
    const QQuickItem* bar = find("QQuickProgressBar", words("Export progress"));
    ASSERT_NE(bar, nullptr);
    EXPECT_EQ(bar->property("to").toDouble(), 3'166);
    EXPECT_EQ(bar->property("value").toDouble(), 1'204);
}

TEST_F(Interaction, theSoundIsHeardOnceACompletion) {
    at("complete");
    const auto sounds = [this] { return std::count(desktop->calls.begin(), desktop->calls.end(), "sound"); };
    EXPECT_EQ(sounds(), 1);
    appearance->change({.isDark = true, .hasReducedMotion = true});
    model->setShowingSetupGuide(true);
    become();
    model->setShowingSetupGuide(false);
    become();
    EXPECT_EQ(sounds(), 1);
    pushed("Back Up Another Conversation");
    become();
    EXPECT_EQ(sounds(), 1);
    adapter->selectConversation(words("2"));
    adapter->continueToExportSetup();
    become();
    pushed("Back Up Now");
    become();
    EXPECT_EQ(sounds(), 2);
}

TEST_F(Interaction, theCompletionScreenLeadsToTheAlbum) {
    at("complete");
    desktop->calls.clear();
    pushed("Show in Finder");
    pushed("Open Archive");
    EXPECT_THAT(desktop->calls, ElementsAre("reveal /home/ada/Downloads/Grace Hopper 2026-11-15",
                                            "open /home/ada/Downloads/Grace Hopper 2026-11-15/index.html"));
}

} // namespace
} // namespace quillbook::test
