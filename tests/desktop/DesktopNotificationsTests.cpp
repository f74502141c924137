#include "shell/desktop/linux/DesktopNotifications.h"
#include "tests/desktop/PrivateDesktop.h"
#include "tests/desktop/RecordingService.h"

#include <QDBusArgument>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <memory>
#include <optional>
#include <string>

#include <gmock/gmock.h>

namespace quillbook {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using Authorization = NotificationCentering::Authorization;

const QString service = QStringLiteral("org.freedesktop.Notifications");
const QString entry = QStringLiteral("quillbook");

NotificationRequest request(const std::string& archive) {
    return {.identifier = archive,
            .title = "Album ready",
            .body = "Ann & <b>Ben</b> has been saved.",
            .information = {{"archive", archive}}};
}

class Notifications : public test::PrivateDesktop {
protected:
    void begin(std::chrono::milliseconds patience = 20s) {
        subject_ = std::make_unique<DesktopNotifications>(entry, bus_.connect(), patience);
        subject_->onResponse([this](const NotificationInformation& information, auto completed) {
            responses_.push_back(std::get<std::string>(information.at("archive")));
            completed();
        });
    }

    std::optional<bool> add(const std::string& archive) {
        std::optional<bool> taken;
        subject_->add(request(archive), [&](bool isTaken) { taken = isTaken; });
        EXPECT_FALSE(taken) << "answered within the call";
        test::await([&] { return taken.has_value(); });
        return taken;
    }

    std::optional<Authorization> authorization() {
        std::optional<Authorization> status;
        subject_->authorization([&](Authorization answer) { status = answer; });
        test::await([&] { return status.has_value(); });
        return status;
    }

    test::PrivateBus bus_;
    std::unique_ptr<DesktopNotifications> subject_;
    std::vector<std::string> responses_;
};

// With a notification daemon of the distribution.

class RealNotifications : public Notifications {
protected:
    RealNotifications() {
        startDaemon();
        begin();
    }

    void startDaemon() {
        daemon_.reset();
        const auto file = home_.write("dunstrc", "[global]\nmonitor = 0\n");
        daemon_ = std::make_unique<test::RunningProgram>(
            std::vector<std::string>{"dunst", "-conf", file.string(), "-verbosity", "crit"});
        auto probe = bus_.connect();
        DesktopNotifications waiting(entry, probe);
        test::await([&] {
            std::optional<Authorization> status;
            waiting.authorization([&](Authorization answer) { status = answer; });
            test::await([&] { return status.has_value(); });
            return status == Authorization::authorized;
        });
    }

    QJsonObject closedNotification() {
        test::outputOf({"dunstctl", "close-all"});
        const auto history = test::outputOf({"dunstctl", "history"});
        const auto document = QJsonDocument::fromJson(QByteArray::fromStdString(history));
        return document[QStringLiteral("data")][0][0].toObject();
    }

    static std::string field(const QJsonObject& notification, const char* name) {
        return notification[QLatin1String(name)][QStringLiteral("data")].toString().toStdString();
    }

    std::unique_ptr<test::RunningProgram> daemon_;
};

TEST_F(RealNotifications, areAuthorized) {
    EXPECT_EQ(authorization(), Authorization::authorized);
}

TEST_F(RealNotifications, showTitleBodyAndOurName) {
    ASSERT_EQ(add("/albums/ann"), true);
    const auto shown = closedNotification();
    EXPECT_EQ(field(shown, "summary"), "Album ready");
    EXPECT_EQ(field(shown, "body"), "Ann & <b>Ben</b> has been saved.");
    EXPECT_EQ(field(shown, "appname"), "Quillbook");
    EXPECT_EQ(field(shown, "default_action_name"), "default");
}

TEST_F(RealNotifications, clickedGiveBackTheArchive) {
    ASSERT_EQ(add("/albums/ann"), true);
    test::outputOf({"dunstctl", "action", "0"});
    ASSERT_TRUE(test::await([&] { return !responses_.empty(); }));
    EXPECT_THAT(responses_, ElementsAre("/albums/ann"));
}

TEST_F(RealNotifications, workWithADaemonThatStartsAgain) {
    ASSERT_EQ(add("/albums/before"), true);
    startDaemon();
    ASSERT_EQ(add("/albums/after"), true);
    test::outputOf({"dunstctl", "action", "0"});
    ASSERT_TRUE(test::await([&] { return !responses_.empty(); }));
    EXPECT_THAT(responses_, ElementsAre("/albums/after"));
}

TEST_F(RealNotifications, areNotTakenOnceTheDaemonIsGone) {
    daemon_->stop();
    EXPECT_EQ(add("/albums/ann"), false);
}

class StartableNotifications : public test::PrivateDesktop {};

TEST_F(StartableNotifications, areAuthorizedAndStartTheDaemon) {
    test::PrivateBus bus({"org.knopwob.dunst"});
    DesktopNotifications subject(entry, bus.connect());
    std::optional<bool> granted;
    subject.requestAuthorization([&](bool isGranted) { granted = isGranted; });
    ASSERT_TRUE(test::await([&] { return granted.has_value(); }));
    EXPECT_EQ(granted, true);
    std::optional<bool> taken;
    subject.add(request("/albums/ann"), [&](bool isTaken) { taken = isTaken; });
    ASSERT_TRUE(test::await([&] { return taken.has_value(); }));
    EXPECT_EQ(taken, true);
}

// With a service that records what it is told.

class RecordedNotifications : public Notifications {
protected:
    RecordedNotifications() {
        startServer({QStringLiteral("actions"), QStringLiteral("body-markup")});
        begin();
    }

    void startServer(const QStringList& capabilities) {
        server_.reset();
        server_ = std::make_unique<test::RecordingService>(bus_.connect(), service,
                                                           QStringLiteral("/org/freedesktop/Notifications"));
        server_->answerWith(QStringLiteral("GetCapabilities"), {capabilities});
        server_->answer(QStringLiteral("Notify"),
                        [this](const QDBusMessage& call) { return call.createReply(QVariant(++lastID_)); });
    }

    QVariantList notified() { return server_->calls(QStringLiteral("Notify")).at(0).arguments(); }

    void invoke(uint id, const char* action = "default") {
        server_->sendSignal(service, QStringLiteral("ActionInvoked"), {id, QLatin1String(action)});
    }

    /// A click that is heard, after all that was sent before it was heard too.
    void awaitTheClickOn(uint id) {
        const auto before = responses_.size();
        invoke(id);
        ASSERT_TRUE(test::await([&] { return responses_.size() > before; }));
    }

    uint lastID_ = 0;
    std::unique_ptr<test::RecordingService> server_;
};

TEST_F(RecordedNotifications, nameTheApplicationItsIconAndItsEntry) {
    ASSERT_EQ(add("/albums/ann"), true);
    const auto values = notified();
    EXPECT_EQ(values[0].toString(), QStringLiteral("Quillbook"));
    EXPECT_EQ(values[1].toUInt(), 0U);
    EXPECT_EQ(values[2].toString(), entry);
    EXPECT_EQ(values[5].toStringList().value(0), QStringLiteral("default"));
    const auto hints = qdbus_cast<QVariantMap>(values[6]);
    EXPECT_EQ(hints[QStringLiteral("desktop-entry")], entry);
    EXPECT_EQ(hints[QStringLiteral("sound-name")], QStringLiteral("message"));
    EXPECT_EQ(values[7].toInt(), -1);
}

TEST_F(RecordedNotifications, escapeTheBodyForAServerThatReadsMarkup) {
    ASSERT_EQ(add("/albums/ann"), true);
    EXPECT_EQ(notified()[4].toString(), QStringLiteral("Ann &amp; &lt;b&gt;Ben&lt;/b&gt; has been saved."));
}

TEST_F(RecordedNotifications, leaveTheBodyPlainForAServerThatReadsNoMarkup) {
    startServer({QStringLiteral("actions")});
    ASSERT_EQ(add("/albums/ann"), true);
    EXPECT_EQ(notified()[4].toString(), QStringLiteral("Ann & <b>Ben</b> has been saved."));
}

TEST_F(RecordedNotifications, offerNoActionToAServerWithoutActions) {
    startServer({});
    ASSERT_EQ(add("/albums/ann"), true);
    EXPECT_EQ(notified()[5].toStringList(), QStringList());
}

TEST_F(RecordedNotifications, withOddBytesInTheirWordsAreTaken) {
    std::optional<bool> taken;
    subject_->add({.identifier = "1", .title = std::string("a\0b\xFF", 4), .body = "\xC3"},
                  [&](bool isTaken) { taken = isTaken; });
    ASSERT_TRUE(test::await([&] { return taken.has_value(); }));
    EXPECT_EQ(taken, true);
    EXPECT_EQ(notified()[3].toString(), QString::fromUtf8("ab\xEF\xBF\xBD"));
}

TEST_F(RecordedNotifications, withAMegabyteOfWordsAreShortenedBeforeTheyAreEscaped) {
    std::optional<bool> taken;
    subject_->add(
        {.identifier = "1", .title = std::string(1'000'000, 't'), .body = std::string(1'000'000, '<')},
        [&](bool isTaken) { taken = isTaken; });
    ASSERT_TRUE(test::await([&] { return taken.has_value(); }));
    EXPECT_EQ(notified()[3].toString(), QString(253, QLatin1Char('t')) + QChar(u'…'));
    EXPECT_EQ(notified()[4].toString(), QStringLiteral("&lt;").repeated(1'021) + QChar(u'…'));
}

TEST_F(RecordedNotifications, areToldApartByTheirNumbers) {
    add("/albums/ann");
    add("/albums/ben");
    awaitTheClickOn(2);
    awaitTheClickOn(1);
    EXPECT_THAT(responses_, ElementsAre("/albums/ben", "/albums/ann"));
}

TEST_F(RecordedNotifications, answerTheDefaultActionAlone) {
    add("/albums/ann");
    invoke(1, "other");
    invoke(1, "");
    awaitTheClickOn(1);
    EXPECT_THAT(responses_, ElementsAre("/albums/ann"));
}

TEST_F(RecordedNotifications, closedAreForgotten) {
    add("/albums/ann");
    add("/albums/ben");
    server_->sendSignal(service, QStringLiteral("NotificationClosed"), {1U, 2U});
    invoke(1);
    awaitTheClickOn(2);
    EXPECT_THAT(responses_, ElementsAre("/albums/ben"));
}

TEST_F(RecordedNotifications, ofOtherProgramsAreNoneOfOurs) {
    add("/albums/ann");
    invoke(4'711);
    awaitTheClickOn(1);
    EXPECT_THAT(responses_, ElementsAre("/albums/ann"));
}

TEST_F(RecordedNotifications, passOverSignalsOfOtherTypes) {
    add("/albums/ann");
    server_->sendSignal(service, QStringLiteral("ActionInvoked"), {QStringLiteral("1"), 1U});
    server_->sendSignal(service, QStringLiteral("ActionInvoked"), {1U});
    server_->sendSignal(service, QStringLiteral("ActionInvoked"), {});
    server_->sendSignal(service, QStringLiteral("NotificationClosed"), {1U});
    server_->sendSignal(service, QStringLiteral("NotificationClosed"), {QStringLiteral("1"), 1U});
    awaitTheClickOn(1);
    EXPECT_THAT(responses_, ElementsAre("/albums/ann"));
}

TEST_F(RecordedNotifications, areClickedInTheirOwnServerAlone) {
    add("/albums/ann");
    test::RecordingService stranger(bus_.connect(), QStringLiteral("org.example.Stranger"),
                                    QStringLiteral("/org/freedesktop/Notifications"));
    stranger.answerWith(QStringLiteral("Ping"), {});
    stranger.sendSignal(service, QStringLiteral("ActionInvoked"), {1U, QStringLiteral("default")});
    // What the stranger sends next arrives after that signal.
    bool hasAnswered = false;
    QObject context;
    callOnBus(bus_.connect(),
              QDBusMessage::createMethodCall(QStringLiteral("org.example.Stranger"),
                                             QStringLiteral("/org/freedesktop/Notifications"),
                                             QStringLiteral("org.example.Stranger"), QStringLiteral("Ping")),
              20s, &context, [&](const QDBusMessage&) { hasAnswered = true; });
    ASSERT_TRUE(test::await([&] { return hasAnswered; }));
    awaitTheClickOn(1);
    EXPECT_THAT(responses_, ElementsAre("/albums/ann"));
}

TEST_F(RecordedNotifications, ofAnEarlierServerAreForgotten) {
    add("/albums/ann");
    startServer({});
    add("/albums/ben");
    invoke(1);
    awaitTheClickOn(2);
    EXPECT_THAT(responses_, ElementsAre("/albums/ben"));
}

TEST_F(RecordedNotifications, rememberTheLatestWithoutEnd) {
    for (int count = 0; count < 100; ++count) {
        add("/albums/" + std::to_string(count + 1));
    }
    invoke(1);
    awaitTheClickOn(100);
    EXPECT_THAT(responses_, ElementsAre("/albums/100"));
}

TEST_F(RecordedNotifications, mayBeAddedWithinAResponse) {
    std::optional<bool> taken;
    subject_->onResponse([&](const NotificationInformation&, auto completed) {
        subject_->add(request("/albums/ben"), [&](bool isTaken) { taken = isTaken; });
        completed();
    });
    add("/albums/ann");
    invoke(1);
    ASSERT_TRUE(test::await([&] { return taken.has_value(); }));
    EXPECT_EQ(taken, true);
}

TEST_F(RecordedNotifications, withoutAnybodyToAnswerStaySilent) {
    subject_->onResponse(nullptr);
    add("/albums/ann");
    invoke(1);
    EXPECT_EQ(add("/albums/ben"), true);
    EXPECT_TRUE(responses_.empty());
}

// Where the service does not do as it should.

struct FailureCase {
    std::string name;
    std::function<void(test::RecordingService&)> arrange;
};

class FailingNotifications : public RecordedNotifications, public testing::WithParamInterface<FailureCase> {};

TEST_P(FailingNotifications, areNotTaken) {
    begin(300ms);
    GetParam().arrange(*server_);
    EXPECT_EQ(add("/albums/ann"), false);
}

const QString capabilities = QStringLiteral("GetCapabilities");
const QString notify = QStringLiteral("Notify");

INSTANTIATE_TEST_SUITE_P(
    Table, FailingNotifications,
    testing::Values(
        FailureCase{"errorForCapabilities", [](auto& server) { server.answerWithError(capabilities); }},
        FailureCase{"silenceForCapabilities", [](auto& server) { server.neverAnswer(capabilities); }},
        FailureCase{"numberForCapabilities", [](auto& server) { server.answerWith(capabilities, {1U}); }},
        FailureCase{"errorForNotification", [](auto& server) { server.answerWithError(notify); }},
        FailureCase{"silenceForNotification", [](auto& server) { server.neverAnswer(notify); }},
        FailureCase{"wordForNotification",
                    [](auto& server) { server.answerWith(notify, {QStringLiteral("1")}); }},
        FailureCase{"nothingForNotification", [](auto& server) { server.answerWith(notify, {}); }},
        FailureCase{"noNumber", [](auto& server) { server.answerWith(notify, {0U}); }}),
    [](const auto& one) { return one.param.name; });

TEST_F(Notifications, withoutAServiceAreDeniedAndNotTaken) {
    begin();
    EXPECT_EQ(authorization(), Authorization::denied);
    EXPECT_EQ(add("/albums/ann"), false);
}

TEST_F(Notifications, onABusThatEndsAreDeniedAndNotTaken) {
    begin();
    bus_.stop();
    EXPECT_EQ(authorization(), Authorization::denied);
    EXPECT_EQ(add("/albums/ann"), false);
}

TEST_F(Notifications, withoutABusAreDeniedAndNotTaken) {
    subject_ = std::make_unique<DesktopNotifications>(entry, test::noBus());
    EXPECT_EQ(authorization(), Authorization::denied);
    EXPECT_EQ(add("/albums/ann"), false);
}

TEST_F(Notifications, areNotAnsweredOnceNobodyIsThere) {
    bool isAnswered = false;
    subject_ = std::make_unique<DesktopNotifications>(entry, test::noBus());
    subject_->add(request("/albums/ann"), [&](bool) { isAnswered = true; });
    begin();
    EXPECT_EQ(add("/albums/ben"), false);
    EXPECT_FALSE(isAnswered);
}

} // namespace
} // namespace quillbook
