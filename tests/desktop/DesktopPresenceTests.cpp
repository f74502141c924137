#include "shell/desktop/linux/BusCalls.h"
#include "shell/desktop/linux/DesktopPresence.h"
#include "tests/desktop/PrivateDesktop.h"

#include <QDBusArgument>
#include <QGuiApplication>
#include <memory>
#include <string>

#include <gmock/gmock.h>

namespace quillbook {
namespace {

using testing::HasSubstr;
using testing::Not;

/// A dock that keeps what launcher entries tell.
class Badge : public test::PrivateDesktop {
protected:
    Badge()
        : dock_(bus_.connect(), QString(), QString(), QStringLiteral("com.canonical.Unity.LauncherEntry"),
                QStringLiteral("Update"), QStringLiteral("sa{sv}"),
                [this](const QVariantList& values) {
                    applications_ << values[0].toString();
                    updates_ << qdbus_cast<QVariantMap>(values[1]);
                }),
          subject_(
              QStringLiteral("quillbook"), [] { return nullptr; }, bus_.connect()) {}

    bool awaitUpdates(qsizetype count) {
        return test::await([&] { return updates_.size() >= count; });
    }

    test::PrivateBus bus_;
    QStringList applications_;
    QList<QVariantMap> updates_;
    BusSignalListener dock_;
    DesktopPresence subject_;
};

QVariantMap update(qint64 count, double progress, bool isVisible) {
    return {{QStringLiteral("count"), count},
            {QStringLiteral("count-visible"), isVisible},
            {QStringLiteral("progress"), progress},
            {QStringLiteral("progress-visible"), isVisible}};
}

TEST_F(Badge, isTheCountAndTheProgressOfOurEntry) {
    subject_.showBadge(42);
    ASSERT_TRUE(awaitUpdates(1));
    EXPECT_EQ(applications_[0], QStringLiteral("application://quillbook.desktop"));
    EXPECT_EQ(updates_[0], update(42, 0.42, true));
    EXPECT_EQ(updates_[0][QStringLiteral("count")].typeId(), QMetaType::LongLong);
}

TEST_F(Badge, goesAway) {
    subject_.showBadge(100);
    subject_.clearBadge();
    ASSERT_TRUE(awaitUpdates(2));
    EXPECT_EQ(updates_[1], update(0, 0, false));
}

TEST_F(Badge, isNotToldAgainUnchanged) {
    subject_.showBadge(7);
    subject_.showBadge(7);
    subject_.showBadge(8);
    ASSERT_TRUE(awaitUpdates(2));
    EXPECT_EQ(updates_[1], update(8, 0.08, true));
}

TEST_F(Badge, isToldAgainAfterItWentAway) {
    subject_.showBadge(7);
    subject_.clearBadge();
    subject_.showBadge(7);
    ASSERT_TRUE(awaitUpdates(3));
    EXPECT_EQ(updates_[2], update(7, 0.07, true));
}

TEST_F(Badge, staysBetweenOneAndAHundred) {
    subject_.showBadge(-5);
    subject_.showBadge(4'000);
    ASSERT_TRUE(awaitUpdates(2));
    EXPECT_EQ(updates_[0], update(1, 0.01, true));
    EXPECT_EQ(updates_[1], update(100, 1, true));
}

TEST(Presence, withoutABusAndAWindowDoesNothing) {
    DesktopPresence subject(
        QStringLiteral("quillbook"), [] { return nullptr; }, test::noBus());
    subject.showBadge(50);
    subject.clearBadge();
    subject.requestAttention();
    subject.activate();
    EXPECT_FALSE(subject.isActive());
}

/// Two windows under a window manager: ours, and another one, which can have the focus instead.
class WindowPresence : public test::PrivateDesktop {
protected:
    WindowPresence()
        : subject_(
              QStringLiteral("quillbook"), [this] { return &window_; }, test::noBus()) {
        window_.setTitle(QStringLiteral("album"));
        show(window_);
    }

    static void show(QWindow& window) {
        window.resize(300, 200);
        window.show();
        window.requestActivate();
        test::await([&] { return window.isActive(); });
    }

    std::string state() {
        return test::outputOf({"xprop", "-id", std::to_string(window_.winId()), "_NET_WM_STATE"});
    }

    bool awaitState(const testing::Matcher<std::string>& matcher) {
        return test::await([&] { return matcher.Matches(state()); });
    }

    QWindow window_;
    QWindow other_;
    DesktopPresence subject_;
};

const std::string attention = "_NET_WM_STATE_DEMANDS_ATTENTION";

TEST_F(WindowPresence, isActiveWithTheFocus) {
    EXPECT_TRUE(subject_.isActive());
}

TEST_F(WindowPresence, isNotActiveWithoutTheFocus) {
    window_.showMinimized();
    EXPECT_TRUE(test::await([&] { return !subject_.isActive(); }));
}

TEST_F(WindowPresence, asksForAttentionWithoutTakingTheFocus) {
    show(other_);
    subject_.requestAttention();
    EXPECT_TRUE(awaitState(HasSubstr(attention)));
    EXPECT_TRUE(other_.isActive());
}

TEST_F(WindowPresence, asksForNoAttentionThatItHas) {
    subject_.requestAttention();
    show(other_);
    show(window_);
    EXPECT_THAT(state(), Not(HasSubstr(attention)));
}

TEST_F(WindowPresence, asksUntilTheUserComes) {
    show(other_);
    subject_.requestAttention();
    ASSERT_TRUE(awaitState(HasSubstr(attention)));
    subject_.activate();
    EXPECT_TRUE(awaitState(Not(HasSubstr(attention))));
}

TEST_F(WindowPresence, activatedComesToTheFront) {
    show(other_);
    subject_.activate();
    EXPECT_TRUE(test::await([&] { return window_.isActive(); }));
}

TEST_F(WindowPresence, activatedComesOutOfItsIcon) {
    window_.showMinimized();
    ASSERT_TRUE(awaitState(HasSubstr("_NET_WM_STATE_HIDDEN")));
    subject_.activate();
    EXPECT_TRUE(test::await([&] { return window_.isActive(); }));
    EXPECT_TRUE(awaitState(Not(HasSubstr("_NET_WM_STATE_HIDDEN"))));
}

} // namespace
} // namespace quillbook
