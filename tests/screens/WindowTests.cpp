#include "tests/screens/Interaction.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFont>
#include <QImage>
#include <algorithm>
#include <string>

namespace quillbook::test {
namespace {

// The window.

TEST_F(Interaction, theLeastHeightFollowsTheScreen) {
    at("onboarding-1");
    EXPECT_EQ(window->minimumSize(), QSize(820, 660));
    pushed("Skip");
    become();
    EXPECT_EQ(adapter->screen(), AppModelAdapter::Screen::chooseConversation);
    EXPECT_EQ(window->minimumSize(), QSize(820, 560));
    window->resize(820, 560);
    adapter->replayOnboarding();
    become();
    EXPECT_EQ(window->minimumSize(), QSize(820, 660));
    EXPECT_GE(window->height(), 660);
}

struct HeightCase {
    const char* state;
    int height;

    friend std::ostream& operator<<(std::ostream& out, const HeightCase& each) { return out << each.state; }
};

class LeastHeight : public Interaction, public testing::WithParamInterface<HeightCase> {};

TEST_P(LeastHeight, isThatOfTheScreen) {
    at(GetParam().state);
    EXPECT_EQ(window->minimumHeight(), GetParam().height);
    EXPECT_EQ(window->minimumWidth(), 820);
    EXPECT_EQ(window->title(), words("Quillbook"));
}

INSTANTIATE_TEST_SUITE_P(Screens, LeastHeight,
                         testing::Values(HeightCase{"access-denied", 660}, HeightCase{"list", 560},
                                         HeightCase{"setup", 560}, HeightCase{"progress-copying", 560},
                                         HeightCase{"complete", 560}),
                         [](const auto& test) {
                             std::string name = test.param.state;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

TEST_F(Interaction, theAppearanceIsFollowed) {
    at("setup");
    const auto heading = [this] {
        for (const QQuickItem* each : itemsWith("textFormat"))
            if (each->property("text").toString() == words("Ready to preserve"))
                return each->property("font").value<QFont>().pixelSize();
        return 0;
    };
    const int size = heading();
    const int light = picture().pixelColor(2, 2).lightness();
    appearance->change({.isDark = true, .hasReducedMotion = true, .textScale = 2});
    refresh();
    EXPECT_LT(picture().pixelColor(2, 2).lightness(), light / 2);
    EXPECT_EQ(heading(), 2 * size);
    const QImage plain = picture();
    appearance->change({.isDark = true, .hasHighContrast = true, .hasReducedMotion = true, .textScale = 2});
    refresh();
    EXPECT_NE(picture(), plain);
    appearance->change({.hasReducedMotion = true});
    refresh();
    EXPECT_EQ(heading(), size);
    EXPECT_EQ(picture().pixelColor(2, 2).lightness(), light);
}

// Movement.

class StillStates : public Interaction, public testing::WithParamInterface<const char*> {};

TEST_P(StillStates, doNotMoveWhereTheUserWantsNoMovement) {
    at(GetParam());
    const QImage first = picture();
    wait(200);
    EXPECT_EQ(picture(), first);
}

INSTANTIATE_TEST_SUITE_P(States, StillStates,
                         testing::Values("onboarding-1", "access-checking", "list", "list-loading",
                                         "recovery-surveying", "recovery-recovering", "progress-preparing",
                                         "progress-copying", "complete", "list-error"),
                         [](const auto& test) {
                             std::string name = test.param;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

/// What is below the album's picture, into which photographs come later, as another screen comes.
class NewScreen : public Interaction {
protected:
    void exportAt(const Appearance& wanted) {
        at("setup", wanted);
        wait(600); // The setup has arrived.
        adapter->startExport();
        settle();
        ASSERT_EQ(adapter->screen(), AppModelAdapter::Screen::complete);
    }
    QImage below() {
        picture(); // Lays out what is new.
        const QImage all = picture();
        const QQuickItem* heading = nullptr;
        for (const QQuickItem* each : itemsWith("textFormat"))
            if (each->property("text").toString().contains(words("portable archive"))) heading = each;
        const int top = heading == nullptr ? 0 : static_cast<int>(heading->mapToScene({0, 0}).y());
        EXPECT_GT(top, 0);
        return all.copy(0, top, all.width(), all.height() - top);
    }
};

TEST_F(NewScreen, isThereAtOnceWithoutMovement) {
    exportAt({.hasReducedMotion = true});
    const QImage first = below();
    wait(600);
    EXPECT_EQ(below(), first);
    for (const QQuickItem* each : itemsWith("revealed"))
        for (const QQuickItem* part : itemsWith("leans"))
            EXPECT_EQ(part->opacity() * part->scale(), 1) << each->metaObject()->className();
}

TEST_F(NewScreen, comesUpWithMovement) {
    exportAt({});
    const QImage first = below();
    wait(600);
    EXPECT_NE(below(), first);
}

/// Whether the picture changes within five seconds.
bool moves(ScreenStage& stage) {
    const QImage first = stage.picture();
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < 5'000) {
        stage.wait(50);
        if (stage.picture() != first) return true;
    }
    return false;
}

TEST_F(Interaction, theProgressPictureBreathes) {
    at("progress-copying", {});
    wait(600); // The screen has arrived.
    EXPECT_TRUE(moves(*this));
}

TEST_F(Interaction, theProgressPictureStopsWhenTheUserWantsNoMovement) {
    at("progress-copying", {});
    wait(600);
    appearance->change({.hasReducedMotion = true});
    wait(200);
    const QImage first = picture();
    wait(300);
    EXPECT_EQ(picture(), first);
}

TEST_F(Interaction, sheetsAndAlertsComeAndGoWithMovementToo) {
    at("list", {});
    pushed("How to Get Your Messages");
    wait(400);
    EXPECT_TRUE(shows("Getting your messages onto this Mac"));
    press(Qt::Key_Escape);
    wait(400);
    EXPECT_FALSE(adapter->showingSetupGuide());
    adapter->selectSource(words("locked-backup"));
    wait(400);
    EXPECT_NE(button("Unlock"), nullptr);
    press(Qt::Key_Escape);
    wait(50); // In the middle of its going the source is wanted again.
    adapter->selectSource(words("locked-backup"));
    wait(500);
    EXPECT_TRUE(adapter->isAskingForPassword());
    EXPECT_NE(button("Unlock"), nullptr);
}

} // namespace
} // namespace quillbook::test
