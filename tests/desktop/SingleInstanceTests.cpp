#include "shell/desktop/linux/SingleInstance.h"
#include "tests/desktop/PrivateDesktop.h"
#include "tests/desktop/RecordingService.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusMessage>
#include <QElapsedTimer>
#include <QThread>
#include <memory>
#include <vector>

namespace quillbook::test {
namespace {

const QString name = QStringLiteral("org.quillbook.Quillbook");

class SingleInstanceTest : public PrivateDesktop {
protected:
    /// Starts a second process's part in a thread of its own, since it waits for the first, whose thread this
    /// is.
    bool secondIsFirst() {
        bool isFirst = true;
        const QDBusConnection connection = bus.connect();
        const std::unique_ptr<QThread> second(QThread::create([&] {
            isFirst = SingleInstance(
                          name, [] {}, connection, told)
                          .isFirst();
        }));
        second->start();
        QElapsedTimer clock;
        clock.start();
        while (!second->isFinished() && clock.elapsed() < 20'000)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        second->wait();
        return isFirst;
    }

    PrivateBus bus;
    SingleInstance::Activation told; ///< What the second process was started with.
    std::vector<QByteArray> tokens;  ///< Those the toolkit had at each activation.
};

TEST_F(SingleInstanceTest, theFirstIsFirst) {
    const SingleInstance instance(
        name, [] {}, bus.connect());
    EXPECT_TRUE(instance.isFirst());
}

TEST_F(SingleInstanceTest, aSecondBringsTheFirstToTheFront) {
    const SingleInstance instance(
        name, [this] { tokens.push_back(::qgetenv("XDG_ACTIVATION_TOKEN")); }, bus.connect());
    EXPECT_FALSE(secondIsFirst());
    EXPECT_EQ(tokens.size(), 1U);
}

TEST_F(SingleInstanceTest, aSecondHandsOnItsTokenToTheFirstsToolkit) {
    setVariable("XDG_ACTIVATION_TOKEN", "");
    const SingleInstance instance(
        name, [this] { tokens.push_back(::qgetenv("XDG_ACTIVATION_TOKEN")); }, bus.connect());
    told = {"a token", "an id"};
    EXPECT_FALSE(secondIsFirst());
    EXPECT_EQ(tokens, std::vector{told.token});
}

TEST_F(SingleInstanceTest, aDesktopsOddDataActivatesWithoutAToken) {
    setVariable("XDG_ACTIVATION_TOKEN", "");
    const SingleInstance instance(
        name, [this] { tokens.push_back(::qgetenv("XDG_ACTIVATION_TOKEN")); }, bus.connect());
    const auto other = bus.connect();
    for (const QVariantList& data :
         {QVariantList{}, QVariantList{5}, QVariantList{QVariantMap{{"activation-token", 5.5}}},
          QVariantList{QVariantMap{{"desktop-startup-id", QVariantList{1}}}}}) {
        auto call = QDBusMessage::createMethodCall(name, "/org/quillbook/Quillbook",
                                                   "org.freedesktop.Application", "Activate");
        call.setArguments(data);
        other.send(call);
    }
    ASSERT_TRUE(await([this] { return tokens.size() == 4; }));
    EXPECT_EQ(tokens[0], "");
    EXPECT_EQ(tokens[1], "");
    EXPECT_EQ(tokens[3], "");
}

TEST_F(SingleInstanceTest, aSecondTellsTheDesktopsPlatformData) {
    RecordingService first(bus.connect(), name, QStringLiteral("/org/quillbook/Quillbook"));
    first.answerWith(QStringLiteral("Activate"), {});
    told = {"a token", "an id"};
    EXPECT_FALSE(secondIsFirst());
    const auto data =
        qdbus_cast<QVariantMap>(first.calls(QStringLiteral("Activate")).at(0).arguments().at(0));
    EXPECT_EQ(data, (QVariantMap{{"activation-token", "a token"}, {"desktop-startup-id", "an id"}}));
}

TEST_F(SingleInstanceTest, readsTheUsersWishOutOfTheEnvironment) {
    setVariable("XDG_ACTIVATION_TOKEN", "token");
    setVariable("DESKTOP_STARTUP_ID", "id");
    EXPECT_EQ(SingleInstance::activationOfThisProcess(), (SingleInstance::Activation{"token", "id"}));
}

TEST_F(SingleInstanceTest, afterTheFirstThereMayBeANext) {
    {
        const SingleInstance instance(
            name, [] {}, bus.connect());
    }
    EXPECT_TRUE(secondIsFirst());
}

TEST_F(SingleInstanceTest, oneThatResignedLeavesThePlace) {
    SingleInstance instance(
        name, [this] { tokens.push_back(::qgetenv("XDG_ACTIVATION_TOKEN")); }, bus.connect());
    instance.resign();
    EXPECT_TRUE(secondIsFirst());
    EXPECT_TRUE(tokens.empty());
}

TEST_F(SingleInstanceTest, withoutABusEachIsFirst) {
    const SingleInstance one(
        name, [] {}, noBus());
    const SingleInstance other(
        name, [] {}, noBus());
    EXPECT_TRUE(one.isFirst());
    EXPECT_TRUE(other.isFirst());
}

} // namespace
} // namespace quillbook::test
