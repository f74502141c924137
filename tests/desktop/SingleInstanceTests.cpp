#include "shell/desktop/linux/SingleInstance.h"
#include "tests/desktop/PrivateDesktop.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>
#include <memory>

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
                          name, [] {}, connection)
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
    int activations = 0;
};

TEST_F(SingleInstanceTest, theFirstIsFirst) {
    const SingleInstance instance(
        name, [] {}, bus.connect());
    EXPECT_TRUE(instance.isFirst());
}

TEST_F(SingleInstanceTest, aSecondBringsTheFirstToTheFront) {
    const SingleInstance instance(
        name, [this] { ++activations; }, bus.connect());
    EXPECT_FALSE(secondIsFirst());
    EXPECT_EQ(activations, 1);
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
        name, [this] { ++activations; }, bus.connect());
    instance.resign();
    EXPECT_TRUE(secondIsFirst());
    EXPECT_EQ(activations, 0);
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
