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

TEST_F(Interaction, pageKeysScrollTheSetupFromTheButtonBelowIt) {
    at("setup-prior-news");
    window->resize(window->minimumSize());
    refresh();
    EXPECT_EQ(focusedName(), words("Back Up Now"));
    const auto place = [this] {
        for (const QQuickItem* each : itemsWith("isCentered"))
            return each->property("contentY").toDouble();
        return -1.0;
    };
    EXPECT_EQ(place(), 0);
    press(Qt::Key_PageDown);
    EXPECT_GT(place(), 100);
    EXPECT_EQ(focusedName(), words("Back Up Now"));
    press(Qt::Key_PageUp);
    EXPECT_EQ(place(), 0);
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

TEST_F(Interaction, theAlbumShowsItsPicturesAndNothingThatIsNone) {
    at("complete-pictures");
    const auto drawn = [this] {
        std::vector<std::string> places;
        for (const QQuickItem* each : itemsWith("paintedWidth")) {
            const QVariant status = each->property("status");
            if (!each->property("source").toUrl().toString().startsWith(words("image://album/"))) continue;
            places.push_back(each->parentItem()->property("place").toString().toStdString() +
                             (status.toInt() == 1   ? " drawn"
                              : status.toInt() == 3 ? " refused"
                                                    : " waits"));
        }
        std::sort(places.begin(), places.end());
        return places;
    };
    const auto waits = [&] {
        const auto places = drawn();
        return std::any_of(places.begin(), places.end(),
                           [](const std::string& each) { return each.ends_with("waits"); });
    };
    for (int times = 0; times < 200 && waits(); ++times)
        refresh();
    EXPECT_THAT(drawn(), ElementsAre("0 drawn", "1 refused", "2 drawn", "3 refused", "4 drawn"));
    const QImage seen = picture();
    for (int y = 0; y < seen.height(); ++y)
        for (int x = 0; x < seen.width(); ++x)
            ASSERT_NE(seen.pixelColor(x, y), QColor(Qt::red)) << "of the drawing, at " << x << ", " << y;
}

TEST_F(Interaction, theWarningsShowThatTheyHaveTheKeyboard) {
    at("complete-warnings", {.hasReducedMotion = true});
    QQuickItem* list = find("QQuickListView", words("40 items need attention"));
    ASSERT_NE(list, nullptr);
    EXPECT_FALSE(ringIsDrawnRound(*list->parentItem()));
    list->forceActiveFocus(Qt::TabFocusReason);
    refresh();
    EXPECT_TRUE(ringIsDrawnRound(*list->parentItem()));
}

} // namespace
} // namespace quillbook::test
