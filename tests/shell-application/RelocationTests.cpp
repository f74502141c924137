#include "shell/application/Relocation.h"
#include "tests/shell-application/RelocationFakes.h"
#include "tests/support/ManualMainThread.h"

#include <gmock/gmock.h>

namespace quillbook::test {
namespace {

using testing::ElementsAre;
using Alert = RelocationHosting::Alert;
using AlertStyle = RelocationHosting::AlertStyle;

struct PlaceCase {
    const char* name;
    const char* bundle;
    bool isTemporary;
};

class Place : public testing::TestWithParam<PlaceCase> {};

TEST_P(Place, needsRelocationWhereItDoesNotLast) {
    EXPECT_EQ(needsRelocation(GetParam().bundle), GetParam().isTemporary);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Place,
    testing::Values(PlaceCase{"diskImage", "/Volumes/Some Image/Quillbook.app", true},
                    PlaceCase{"externalDisk", "/Volumes/Archive Disk/Programs/Quillbook.app", true},
                    PlaceCase{"translocated", "/private/var/folders/x/T/AppTranslocation/1/d/Quillbook.app",
                              true},
                    PlaceCase{"applications", "/Applications/Quillbook.app", false},
                    PlaceCase{"applicationsOfTheUser", "/Users/ada/Applications/Quillbook.app", false},
                    PlaceCase{"volumesFurtherDown", "/Users/ada/Volumes/Quillbook.app", false},
                    PlaceCase{"volumesWithoutItsEnd", "/VolumesOfOld/Quillbook.app", false},
                    PlaceCase{"partOfAName", "/Users/ada/MyAppTranslocation/Quillbook.app", false},
                    PlaceCase{"otherCase", "/volumes/Image/Quillbook.app", false}, //
                    PlaceCase{"nowhere", "", false}),
    [](const auto& test) { return std::string(test.param.name); });

constexpr const char* bundle = "/Volumes/Quillbook/Quillbook.app";
constexpr const char* copying = "copy /Volumes/Quillbook/Quillbook.app to /Applications/Quillbook.app";
constexpr const char* opening = "open /Applications/Quillbook.app";

class RelocationFlowTest : public testing::Test {
protected:
    void run() { RelocationFlow(host, mainThread).run(bundle); }

    std::shared_ptr<FakeRelocationHost> host = std::make_shared<FakeRelocationHost>();
    std::shared_ptr<ManualMainThread> mainThread = std::make_shared<ManualMainThread>();
};

TEST_F(RelocationFlowTest, firstAlertSaysWhatIsWrong) {
    run();
    EXPECT_EQ(
        host->alerts[0],
        (Alert{AlertStyle::critical,
               "Move Quillbook to your Applications folder",
               "macOS is running Quillbook from a temporary location, and it cannot be given permission "
               "to read your messages from there.\n\nMove it to your Applications folder and it will "
               "work normally. Nothing is lost: you can close this and drag the app onto the "
               "Applications shortcut yourself.",
               {"Move and Restart", "Quit"}}));
}

TEST_F(RelocationFlowTest, quitEndsTheApplicationAndNothingElse) {
    host->answers = {1};
    run();
    EXPECT_THAT(host->calls, ElementsAre("alert", "terminate"));
}

TEST_F(RelocationFlowTest, moveCopiesTheBundleAndOpensTheCopy) {
    host->answers = {0};
    run();
    EXPECT_THAT(host->calls, ElementsAre("alert", copying, opening));
}

TEST_F(RelocationFlowTest, thisInstanceEndsOnTheMainThreadOnceTheOtherIsOpened) {
    host->answers = {0};
    run();
    mainThread->turn();
    EXPECT_THAT(host->calls, ElementsAre("alert", copying, opening));
    host->completed();
    EXPECT_THAT(host->calls, ElementsAre("alert", copying, opening));
    mainThread->turn();
    EXPECT_THAT(host->calls, ElementsAre("alert", copying, opening, "terminate"));
}

TEST_F(RelocationFlowTest, olderCopyIsOpenedUnchanged) {
    host->existing = "/Applications/Quillbook.app";
    host->answers = {0};
    run();
    EXPECT_THAT(host->calls, ElementsAre("alert", opening));
}

TEST_F(RelocationFlowTest, failedCopyIsExplained) {
    host->copyFailure = "The disk is full.";
    host->answers = {0, 1};
    run();
    ASSERT_EQ(host->alerts.size(), 2U);
    EXPECT_EQ(
        host->alerts[1],
        (Alert{AlertStyle::warning,
               "Quillbook could not move itself",
               "Drag Quillbook onto the Applications shortcut in the disk image, then open it from your "
               "Applications folder.\n\n(The disk is full.)",
               {"Show Me", "Quit"}}));
}

TEST_F(RelocationFlowTest, showMeRevealsTheRunningBundleAndEnds) {
    host->copyFailure = "The disk is full.";
    host->answers = {0, 0};
    run();
    EXPECT_THAT(host->calls,
                ElementsAre("alert", copying, "alert", std::string("reveal ") + bundle, "terminate"));
}

TEST_F(RelocationFlowTest, quitAfterAFailedCopyEnds) {
    host->copyFailure = "The disk is full.";
    host->answers = {0, 1};
    run();
    EXPECT_THAT(host->calls, ElementsAre("alert", copying, "alert", "terminate"));
}

TEST(RelocationHost, isAbsentWhereApplicationsAreInstalled) {
    EXPECT_EQ(relocationHost(), nullptr);
}

} // namespace
} // namespace quillbook::test
