#include "shell/application/ExportPresence.h"
#include "tests/shell-application/DesktopFakes.h"

#include <limits>

#include <gmock/gmock.h>

namespace quillbook::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Authorization = NotificationCentering::Authorization;

class ExportPresenceTest : public testing::Test {
protected:
    std::shared_ptr<FakeNotificationCenter> center = std::make_shared<FakeNotificationCenter>();
    std::shared_ptr<FakeApplication> application = std::make_shared<FakeApplication>();
    ExportPresence presence{center, application};
};

TEST_F(ExportPresenceTest, startClearsTheBadgeAndAsks) {
    presence.exportStarted();
    EXPECT_THAT(application->calls, ElementsAre("clear badge"));
    EXPECT_THAT(center->authorizationRequests, SizeIs(1));
}

TEST_F(ExportPresenceTest, secondExportDoesNotAskAgain) {
    presence.exportStarted();
    center->authorizationRequests[0](false);
    presence.exportFinished("Lake house", "/albums/lake");
    presence.exportStarted();
    EXPECT_THAT(center->authorizationRequests, SizeIs(1));
}

TEST_F(ExportPresenceTest, generationGrowsWithEachStartAndFinishAlone) {
    EXPECT_EQ(presence.generation(), 0);
    presence.exportStarted();
    EXPECT_EQ(presence.generation(), 1);
    presence.exportProgressed(0.5);
    presence.clearBadge();
    EXPECT_EQ(presence.generation(), 1);
    presence.exportFinished("Lake house", "/albums/lake");
    EXPECT_EQ(presence.generation(), 2);
}

struct BadgeCase {
    const char* name;
    double fraction;
    std::vector<std::string> calls;
};

class Badge : public ExportPresenceTest, public testing::WithParamInterface<BadgeCase> {};

TEST_P(Badge, showsTheRoundedPercentage) {
    presence.exportProgressed(GetParam().fraction);
    EXPECT_EQ(application->calls, GetParam().calls);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Badge,
    testing::Values(BadgeCase{"nothingDone", 0, {}}, BadgeCase{"underHalfAPercent", 0.00499, {}},
                    BadgeCase{"halfAPercent", 0.005, {"badge 1"}}, BadgeCase{"onePercent", 0.01, {"badge 1"}},
                    BadgeCase{"roundedDown", 0.424, {"badge 42"}},
                    BadgeCase{"roundedUp", 0.426, {"badge 43"}},
                    BadgeCase{"almostDone", 0.996, {"badge 100"}}, BadgeCase{"done", 1, {"badge 100"}},
                    BadgeCase{"beyondTheEnd", 1e300, {"badge 100"}}, BadgeCase{"below", -0.5, {}},
                    BadgeCase{"noNumber", std::numeric_limits<double>::quiet_NaN(), {}}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(ExportPresenceTest, newExportShowsNoBadgeUntilOnePercent) {
    presence.exportStarted();
    presence.exportProgressed(0.004);
    EXPECT_THAT(application->calls, ElementsAre("clear badge"));
    presence.exportProgressed(0.01);
    EXPECT_THAT(application->calls, ElementsAre("clear badge", "badge 1"));
}

TEST_F(ExportPresenceTest, finishClearsTheBadgeAndAsksForAttentionOnce) {
    presence.exportFinished("Lake house", "/albums/lake");
    EXPECT_THAT(application->calls, ElementsAre("clear badge", "attention"));
}

TEST_F(ExportPresenceTest, finishInTheBackgroundPostsTheNotification) {
    presence.exportFinished("Lake house", "/albums/lake house");
    EXPECT_THAT(center->added, IsEmpty());
    center->answer(Authorization::authorized);
    ASSERT_THAT(center->added, SizeIs(1));
    const NotificationRequest& request = center->added[0];
    EXPECT_EQ(request.title, "Album ready");
    EXPECT_EQ(request.body, "Lake house has been saved.");
    EXPECT_EQ(request.information, (NotificationInformation{{"archive", std::string("/albums/lake house")}}));
}

TEST_F(ExportPresenceTest, nameOfAMegabyteIsShortenedAndTheWordsStay) {
    std::string name;
    while (name.size() < 1'000'000)
        name += "\u00E9\U0001F6F6";
    presence.exportFinished(name, "/albums/lake");
    center->answer(Authorization::authorized);
    ASSERT_THAT(center->added, SizeIs(1));
    const std::string& body = center->added[0].body;
    EXPECT_THAT(body, testing::EndsWith("\u00E9\U0001F6F6… has been saved."));
    EXPECT_LE(body.size(), 256 + std::string(" has been saved.").size());
}

TEST_F(ExportPresenceTest, eachNotificationHasItsOwnIdentifier) {
    presence.exportFinished("Lake house", "/albums/a");
    presence.exportFinished("Lake house", "/albums/a");
    center->answer(Authorization::authorized);
    ASSERT_THAT(center->added, SizeIs(2));
    EXPECT_THAT(center->added[0].identifier, SizeIs(36));
    EXPECT_NE(center->added[0].identifier, center->added[1].identifier);
}

TEST_F(ExportPresenceTest, activeApplicationGivesNoNotificationAndOnlyTheAttentionRequest) {
    application->active = true;
    presence.exportFinished("Lake house", "/albums/lake");
    EXPECT_THAT(center->authorizationQuestions, IsEmpty());
    EXPECT_THAT(application->calls, ElementsAre("clear badge", "attention"));
}

TEST_F(ExportPresenceTest, withoutPermissionThereIsNoNotification) {
    for (const auto authorization : {Authorization::denied, Authorization::notDetermined}) {
        presence.exportFinished("Lake house", "/albums/lake");
        center->answer(authorization);
        EXPECT_THAT(center->added, IsEmpty());
    }
}

TEST_F(ExportPresenceTest, notificationThatTheCenterRefusesIsNobodysConcern) {
    center->isTaking = false;
    presence.exportFinished("Lake house", "/albums/lake");
    center->answer(Authorization::authorized);
    EXPECT_THAT(center->added, SizeIs(1));
}

TEST_F(ExportPresenceTest, answersMayComeWhenAllElseIsGone) {
    presence.exportFinished("Lake house", "/albums/lake");
    const auto questions = std::exchange(center->authorizationQuestions, {});
    auto gone = std::make_shared<FakeNotificationCenter>();
    ExportPresence(gone, application).exportFinished("Lake house", "/albums/lake");
    const auto late = std::exchange(gone->authorizationQuestions, {});
    gone.reset();
    late[0](Authorization::authorized);
    questions[0](Authorization::authorized);
    EXPECT_THAT(center->added, SizeIs(1));
}

TEST_F(ExportPresenceTest, cancelledExportTakesTheBadgeAway) {
    presence.clearBadge();
    EXPECT_THAT(application->calls, ElementsAre("clear badge"));
}

} // namespace
} // namespace quillbook::test
