#include "shell/desktop/linux/PortalFolderChooser.h"
#include "tests/desktop/PrivateDesktop.h"
#include "tests/desktop/RecordingService.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace quillbook {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using Folder = std::optional<std::filesystem::path>;

const QString portal = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString requestInterface = QStringLiteral("org.freedesktop.portal.Request");
const QString openFile = QStringLiteral("OpenFile");
const QString version = QStringLiteral("Get");

class Choosing : public test::PrivateDesktop {
protected:
    void begin(QDBusConnection bus, std::chrono::milliseconds patience = 20s) {
        subject_ = std::make_unique<PortalFolderChooser>(
            [this] { return window_.get(); },
            [this](const FolderQuestion& question, const FolderChoosing::Answer& answer) {
                fallbackTitles_.push_back(question.title);
                answer("/from/fallback");
                answer("/twice");
            },
            std::move(bus), patience);
    }

    void ask(const std::filesystem::path& folder = "/albums/Ann \xFF") {
        subject_->chooseFolder({.title = "Where?", .prompt = "Take_it", .folder = folder},
                               [this](const Folder& answer) { answers_.push_back(answer); });
        EXPECT_FALSE(isWithinCall_ && !answers_.empty()) << "answered within the call";
        isWithinCall_ = false;
    }

    bool awaitAnswers(std::size_t count) {
        return test::await([&] { return answers_.size() >= count; });
    }

    std::unique_ptr<QWindow> window_;
    std::vector<std::string> fallbackTitles_;
    std::vector<Folder> answers_;
    bool isWithinCall_ = true;
    std::unique_ptr<PortalFolderChooser> subject_;
};

// With a portal that records what it is asked.

class RecordedChoosing : public Choosing {
protected:
    RecordedChoosing() {
        service_ = std::make_unique<test::RecordingService>(bus_.connect(), portal, portalPath);
        setVersion(3U);
        service_->answer(openFile, [](const QDBusMessage& call) {
            return call.createReply(QVariant::fromValue(QDBusObjectPath(requestPath(call))));
        });
        service_->answerWith(QStringLiteral("Close"), {});
        begin(bus_.connect());
    }

    void setVersion(const QVariant& value) {
        service_->answerWith(version, {QVariant::fromValue(QDBusVariant(value))});
    }

    static QVariantMap options(const QDBusMessage& call) {
        return qdbus_cast<QVariantMap>(call.arguments()[2]);
    }

    static QString requestPath(const QDBusMessage& call) {
        const QString sender = call.service().mid(1).replace(QLatin1Char('.'), QLatin1Char('_'));
        return portalPath + QStringLiteral("/request/") + sender + QLatin1Char('/') +
               options(call)[QStringLiteral("handle_token")].toString();
    }

    QDBusMessage openedCall() {
        EXPECT_TRUE(test::await([&] { return service_->count(openFile) > 0; }));
        return service_->calls(openFile).back();
    }

    void respond(const QString& request, const QVariantList& values) {
        service_->sendSignalFrom(request, requestInterface, QStringLiteral("Response"), values);
    }

    static QVariantList chosen(const QStringList& addresses, uint response = 0) {
        return {response, QVariantMap{{QStringLiteral("uris"), addresses}}};
    }

    test::PrivateBus bus_;
    std::unique_ptr<test::RecordingService> service_;
};

TEST_F(RecordedChoosing, asksForOneFolderModally) {
    ask();
    const auto call = openedCall();
    const auto given = options(call);
    EXPECT_EQ(call.interface(), QStringLiteral("org.freedesktop.portal.FileChooser"));
    EXPECT_EQ(call.signature(), QStringLiteral("ssa{sv}"));
    EXPECT_EQ(call.arguments()[1].toString(), QStringLiteral("Where?"));
    EXPECT_EQ(given[QStringLiteral("directory")], true);
    EXPECT_EQ(given[QStringLiteral("modal")], true);
    EXPECT_EQ(given[QStringLiteral("multiple")], false);
}

TEST_F(RecordedChoosing, labelsTheButtonWithoutMakingAKeyOfIt) {
    ask();
    EXPECT_EQ(options(openedCall())[QStringLiteral("accept_label")], QStringLiteral("Take__it"));
}

TEST_F(RecordedChoosing, startsInTheFolderByteForByte) {
    ask();
    const QByteArray expected("/albums/Ann \xFF\0", 14);
    EXPECT_EQ(options(openedCall())[QStringLiteral("current_folder")].toByteArray(), expected);
}

TEST_F(RecordedChoosing, leavesTheStartToTheDesktopWithoutAFolder) {
    ask({});
    EXPECT_FALSE(options(openedCall()).contains(QStringLiteral("current_folder")));
}

TEST_F(RecordedChoosing, belongsToNoWindowWhereThereIsNone) {
    ask();
    EXPECT_EQ(openedCall().arguments()[0].toString(), QString());
}

TEST_F(RecordedChoosing, belongsToOurWindow) {
    window_ = std::make_unique<QWindow>();
    window_->show();
    ask();
    EXPECT_EQ(openedCall().arguments()[0].toString(),
              QStringLiteral("x11:") + QString::number(window_->winId(), 16));
}

struct ResponseCase {
    std::string name;
    QVariantList values;
    Folder expected;
};

class Response : public RecordedChoosing, public testing::WithParamInterface<ResponseCase> {};

TEST_P(Response, isTheAnswer) {
    ask();
    respond(requestPath(openedCall()), GetParam().values);
    ASSERT_TRUE(awaitAnswers(1));
    EXPECT_THAT(answers_, ElementsAre(GetParam().expected));
    EXPECT_THAT(fallbackTitles_, IsEmpty());
}

QVariantList response(const QVariant& uris, uint code = 0) {
    return {code, QVariantMap{{QStringLiteral("uris"), uris}}};
}

QVariantList responseWith(const char* address) {
    return response(QStringList{QLatin1String(address)});
}

INSTANTIATE_TEST_SUITE_P(
    Table, Response,
    testing::Values(
        ResponseCase{"folder", responseWith("file:///albums"), "/albums"},
        ResponseCase{"oddFolder", responseWith("file:///a%20%FF%25"), "/a \xFF%"},
        ResponseCase{"cancelled", response(QStringList{QStringLiteral("file:///a")}, 1), std::nullopt},
        ResponseCase{"ended", response(QStringList{QStringLiteral("file:///a")}, 2), std::nullopt},
        ResponseCase{"web", responseWith("https://example.org/"), std::nullopt},
        ResponseCase{"phone", responseWith("mtp://phone/"), std::nullopt},
        ResponseCase{"anotherMachine", responseWith("file://server/a"), std::nullopt},
        ResponseCase{"noAddress", response(QStringList{}), std::nullopt},
        ResponseCase{"oneWord", response(QStringLiteral("file:///a")), std::nullopt},
        ResponseCase{"number", response(4U), std::nullopt},
        ResponseCase{"nothing", QVariantList{0U, QVariantMap()}, std::nullopt}),
    [](const auto& one) { return one.param.name; });

TEST_F(RecordedChoosing, hearsAResponseThatComesBeforeTheReply) {
    service_->answer(openFile, [this](const QDBusMessage& call) {
        respond(requestPath(call), chosen({QStringLiteral("file:///early")}));
        return call.createReply(QVariant::fromValue(QDBusObjectPath(requestPath(call))));
    });
    ask();
    ASSERT_TRUE(awaitAnswers(1));
    EXPECT_THAT(answers_, ElementsAre("/early"));
}

TEST_F(RecordedChoosing, followsAPortalThatNamesTheRequestItself) {
    const QString own = portalPath + QStringLiteral("/request/t1");
    service_->answerWith(openFile, {QVariant::fromValue(QDBusObjectPath(own))});
    service_->answer(QStringLiteral("Close"), [](const QDBusMessage& call) { return call.createReply(); });
    ask();
    openedCall();
    // The reply is on its way; the user is slower than that.
    EXPECT_TRUE(test::await([&] {
        respond(own, chosen({QStringLiteral("file:///old")}));
        return !answers_.empty();
    }));
    EXPECT_THAT(answers_, ElementsAre("/old"));
}

TEST_F(RecordedChoosing, passesOverResponsesOfOtherTypes) {
    ask();
    const auto request = requestPath(openedCall());
    respond(request, {});
    respond(request, {QStringLiteral("0"), QVariantMap()});
    respond(request, {0U});
    respond(request + QStringLiteral("x"), chosen({QStringLiteral("file:///stranger")}));
    respond(request, chosen({QStringLiteral("file:///ours")}));
    ASSERT_TRUE(awaitAnswers(1));
    EXPECT_THAT(answers_, ElementsAre("/ours"));
}

TEST_F(RecordedChoosing, answersOnce) {
    ask();
    const auto request = requestPath(openedCall());
    respond(request, chosen({QStringLiteral("file:///first")}));
    respond(request, chosen({QStringLiteral("file:///second")}));
    ASSERT_TRUE(awaitAnswers(1));
    ask();
    ASSERT_TRUE(test::await([&] { return service_->count(openFile) == 2; }));
    respond(requestPath(openedCall()), chosen({QStringLiteral("file:///third")}));
    ASSERT_TRUE(awaitAnswers(2));
    EXPECT_THAT(answers_, ElementsAre("/first", "/third"));
}

TEST_F(RecordedChoosing, answersASecondQuestionWithNothingAndGoesOnWithTheFirst) {
    ask();
    const auto request = requestPath(openedCall());
    ask();
    EXPECT_THAT(answers_, IsEmpty());
    ASSERT_TRUE(awaitAnswers(1));
    respond(request, chosen({QStringLiteral("file:///first")}));
    ASSERT_TRUE(awaitAnswers(2));
    EXPECT_THAT(answers_, ElementsAre(std::nullopt, "/first"));
    EXPECT_EQ(service_->count(openFile), 1U);
}

TEST_F(RecordedChoosing, mayBeAskedAgainWithinTheAnswer) {
    subject_->chooseFolder({}, [this](const Folder&) { ask(); });
    isWithinCall_ = false;
    respond(requestPath(openedCall()), chosen({}));
    ASSERT_TRUE(test::await([&] { return service_->count(openFile) == 2; }));
    respond(requestPath(openedCall()), chosen({QStringLiteral("file:///again")}));
    ASSERT_TRUE(awaitAnswers(1));
    EXPECT_THAT(answers_, ElementsAre("/again"));
}

TEST_F(RecordedChoosing, answersNothingWhenThePortalGoes) {
    ask();
    openedCall();
    service_.reset();
    ASSERT_TRUE(awaitAnswers(1));
    EXPECT_THAT(answers_, ElementsAre(std::nullopt));
    EXPECT_THAT(fallbackTitles_, IsEmpty());
}

TEST_F(RecordedChoosing, closesTheDialogWhenWeEnd) {
    ask();
    const auto request = requestPath(openedCall());
    subject_.reset();
    ASSERT_TRUE(test::await([&] { return service_->count(QStringLiteral("Close")) == 1; }));
    EXPECT_EQ(service_->calls(QStringLiteral("Close"))[0].path(), request);
    EXPECT_THAT(answers_, IsEmpty());
}

// Where the fall-back asks.

TEST_F(RecordedChoosing, closesTheDialogOfAPortalThatDoesNotAnswerInTime) {
    begin(bus_.connect(), 200ms);
    service_->neverAnswer(openFile);
    ask();
    ASSERT_TRUE(awaitAnswers(1));
    EXPECT_THAT(answers_, ElementsAre("/from/fallback"));
    ASSERT_TRUE(test::await([&] { return service_->count(QStringLiteral("Close")) == 1; }));
}

struct PortalCase {
    std::string name;
    std::function<void(test::RecordingService&)> arrange;
};

QVariant boxed(const QVariant& value) {
    return QVariant::fromValue(QDBusVariant(value));
}

class InsufficientPortal : public RecordedChoosing, public testing::WithParamInterface<PortalCase> {};

TEST_P(InsufficientPortal, leavesTheQuestionToTheFallback) {
    begin(bus_.connect(), 200ms);
    GetParam().arrange(*service_);
    ask();
    ASSERT_TRUE(awaitAnswers(1));
    EXPECT_THAT(answers_, ElementsAre("/from/fallback"));
    EXPECT_THAT(fallbackTitles_, ElementsAre("Where?"));
}

INSTANTIATE_TEST_SUITE_P(
    Table, InsufficientPortal,
    testing::Values(
        PortalCase{"tooOld", [](auto& service) { service.answerWith(version, {boxed(2U)}); }},
        PortalCase{"versionInWords",
                   [](auto& service) { service.answerWith(version, {boxed(QStringLiteral("9"))}); }},
        PortalCase{"versionUnboxed", [](auto& service) { service.answerWith(version, {3U}); }},
        PortalCase{"noFileChooser", [](auto& service) { service.answerWithError(version); }},
        PortalCase{"silenceForTheVersion", [](auto& service) { service.neverAnswer(version); }},
        PortalCase{"errorForTheDialog", [](auto& service) { service.answerWithError(openFile); }},
        PortalCase{"wordForTheDialog",
                   [](auto& service) { service.answerWith(openFile, {QStringLiteral("/handle")}); }}),
    [](const auto& one) { return one.param.name; });

TEST_F(Choosing, withoutAPortalIsTheFallbacks) {
    test::PrivateBus bus;
    begin(bus.connect());
    ask();
    ASSERT_TRUE(awaitAnswers(1));
    EXPECT_THAT(answers_, ElementsAre("/from/fallback"));
}

TEST_F(Choosing, withoutABusIsTheFallbacks) {
    begin(test::noBus());
    ask();
    ASSERT_TRUE(awaitAnswers(1));
    EXPECT_THAT(answers_, ElementsAre("/from/fallback"));
}

TEST_F(Choosing, isNotAnsweredByAFallbackThatOutlivesIt) {
    FolderChoosing::Answer kept;
    subject_ = std::make_unique<PortalFolderChooser>(
        [] { return nullptr; },
        [&](const FolderQuestion&, const FolderChoosing::Answer& answer) { kept = answer; }, test::noBus());
    ask();
    ASSERT_TRUE(test::await([&] { return kept != nullptr; }));
    subject_.reset();
    kept("/late");
    EXPECT_THAT(answers_, IsEmpty());
}

// With the portal of the distribution.

class RealChoosing : public Choosing {
protected:
    RealChoosing() {
        begin(bus_.connect());
        ask(home_.path());
    }

    /// Presses a key in the dialog until the question is answered: a dialog is a moment deaf when it appears.
    bool pressUntilAnswered(const std::string& key) {
        return test::await([&] {
            const auto active = test::outputOf({"xdotool", "getactivewindow", "getwindowname"});
            if (active == "Where?\n") test::outputOf({"xdotool", "key", key});
            return !answers_.empty();
        });
    }

    test::PrivateBus bus_{{"org.freedesktop.portal.Desktop", "org.freedesktop.impl.portal.desktop.gtk",
                           "org.freedesktop.impl.portal.PermissionStore"}};
};

TEST_F(RealChoosing, leftByTheEscapeKeyIsAnsweredWithNothing) {
    ASSERT_TRUE(pressUntilAnswered("Escape"));
    EXPECT_THAT(answers_, ElementsAre(std::nullopt));
    EXPECT_THAT(fallbackTitles_, IsEmpty());
}

} // namespace
} // namespace quillbook
