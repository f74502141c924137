#include "shell/desktop/linux/PortalAppearance.h"
#include "tests/desktop/PrivateDesktop.h"
#include "tests/desktop/RecordingService.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <limits>
#include <memory>
#include <ostream>
#include <string>

namespace quillbook {

void PrintTo(const Appearance& appearance, std::ostream* stream) {
    *stream << "dark " << appearance.isDark << ", contrast " << appearance.hasHighContrast << ", still "
            << appearance.hasReducedMotion << ", text " << appearance.textScale;
}

namespace {

using namespace std::chrono_literals;
using Settings = QMap<QString, QVariantMap>;

const QString portal = QStringLiteral("org.freedesktop.portal.Desktop");
const QString settingsInterface = QStringLiteral("org.freedesktop.portal.Settings");
const QString readAll = QStringLiteral("ReadAll");
const QString common = QStringLiteral("org.freedesktop.appearance");
const QString gnome = QStringLiteral("org.gnome.desktop.interface");
const QString gnomeAccess = QStringLiteral("org.gnome.desktop.a11y.interface");

// With the portal of the distribution, over the settings of its desktop.

class RealAppearance : public test::PrivateDesktop {
protected:
    RealAppearance() { setVariable("XDG_CURRENT_DESKTOP", "GNOME"); }

    static void set(const std::string& key, const std::string& value) {
        test::outputOf({"gsettings", "set", "org.gnome.desktop.interface", key, value});
    }

    void begin() { subject_ = std::make_unique<PortalAppearance>(bus_.connect()); }

    bool awaitAppearance(const Appearance& expected) {
        return test::await([&] { return subject_->appearance() == expected; });
    }

    test::PrivateBus bus_{{"org.freedesktop.portal.Desktop", "org.freedesktop.impl.portal.desktop.gtk",
                           "org.freedesktop.impl.portal.PermissionStore"}};
    std::unique_ptr<PortalAppearance> subject_;
};

TEST_F(RealAppearance, isReadAtTheStart) {
    set("color-scheme", "prefer-dark");
    set("text-scaling-factor", "1.5");
    begin();
    EXPECT_TRUE(awaitAppearance({.isDark = true, .textScale = 1.5}));
}

TEST_F(RealAppearance, isFollowedAsItChanges) {
    set("color-scheme", "prefer-dark");
    begin();
    ASSERT_TRUE(awaitAppearance({.isDark = true}));
    int changes = 0;
    subject_->observe([&] { ++changes; });
    set("enable-animations", "false");
    ASSERT_TRUE(awaitAppearance({.isDark = true, .hasReducedMotion = true}));
    set("color-scheme", "default");
    EXPECT_TRUE(awaitAppearance({.hasReducedMotion = true}));
    EXPECT_EQ(changes, 2);
}

// With a portal that says what it is told to say.

class RecordedAppearance : public test::PrivateDesktop {
protected:
    RecordedAppearance() {
        qDBusRegisterMetaType<Settings>();
        startPortal();
    }

    void startPortal() {
        service_.reset();
        service_ = std::make_unique<test::RecordingService>(
            bus_.connect(), portal, QStringLiteral("/org/freedesktop/portal/desktop"));
    }

    void tell(const Settings& settings) { service_->answerWith(readAll, {QVariant::fromValue(settings)}); }

    void begin(std::chrono::milliseconds patience = 20s) {
        subject_ = std::make_unique<PortalAppearance>(bus_.connect(), patience);
    }

    /// What is changed from now on, is heard.
    void beginAndAwaitTheReading() {
        const auto before = service_->count(readAll);
        begin();
        ASSERT_TRUE(test::await([&] { return service_->count(readAll) > before; }));
    }

    void change(const QString& space, const char* key, const QVariant& value) {
        service_->sendSignal(settingsInterface, QStringLiteral("SettingChanged"),
                             {space, QLatin1String(key), QVariant::fromValue(QDBusVariant(value))});
    }

    bool awaitDark(bool isDark) {
        return test::await([&] { return subject_->appearance().isDark == isDark; });
    }

    /// All that was sent before this has been heard when it returns.
    void awaitChangeToDark() {
        change(common, "color-scheme", 1U);
        ASSERT_TRUE(awaitDark(true));
    }

    test::PrivateBus bus_;
    std::unique_ptr<test::RecordingService> service_;
    std::unique_ptr<PortalAppearance> subject_;
};

struct SettingCase {
    std::string name;
    QString space;
    const char* key;
    QVariant value;
    Appearance expected; ///< Apart from being dark, by which the test knows that the portal was heard.
};

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

const auto settingCases = testing::Values(
    SettingCase{"moreContrast", common, "contrast", 1U, {.hasHighContrast = true}},
    SettingCase{"usualContrast", common, "contrast", 0U, {}},
    SettingCase{"unknownContrast", common, "contrast", 7U, {}},
    SettingCase{"lessMotion", common, "reduced-motion", 1U, {.hasReducedMotion = true}},
    SettingCase{"usualMotion", common, "reduced-motion", 0U, {}},
    SettingCase{"noAnimations", gnome, "enable-animations", false, {.hasReducedMotion = true}},
    SettingCase{"animations", gnome, "enable-animations", true, {}},
    SettingCase{"largerText", gnome, "text-scaling-factor", 1.25, {.textScale = 1.25}},
    SettingCase{"giantText", gnome, "text-scaling-factor", 1e300, {.textScale = 3}},
    SettingCase{"tinyText", gnome, "text-scaling-factor", 0.0, {.textScale = 0.5}},
    SettingCase{"negativeText", gnome, "text-scaling-factor", -2.0, {.textScale = 0.5}},
    SettingCase{"textOfNoNumber", gnome, "text-scaling-factor", notANumber, {}},
    SettingCase{"textWithoutEnd", gnome, "text-scaling-factor", infinite, {}},
    SettingCase{"textInWords", gnome, "text-scaling-factor", QStringLiteral("2"), {}},
    SettingCase{"textAsInteger", gnome, "text-scaling-factor", 2, {}},
    SettingCase{"gnomesContrast", gnomeAccess, "high-contrast", true, {.hasHighContrast = true}},
    SettingCase{"gnomesUsualContrast", gnomeAccess, "high-contrast", false, {}},
    SettingCase{"contrastInWords", common, "contrast", QStringLiteral("1"), {}},
    SettingCase{"signedContrast", common, "contrast", 1, {}},
    SettingCase{"contrastInAList", common, "contrast", QStringList{QStringLiteral("1")}, {}},
    SettingCase{"contrastInAVariant", common, "contrast", QVariant::fromValue(QDBusVariant(1U)), {}},
    SettingCase{"animationsAsNumber", gnome, "enable-animations", 0U, {}},
    SettingCase{"anotherSpace", QStringLiteral("org.example"), "contrast", 1U, {}},
    SettingCase{"anotherKey", common, "accent", 1U, {}});

class Setting : public RecordedAppearance, public testing::WithParamInterface<SettingCase> {
protected:
    Appearance expected() const {
        Appearance expected = GetParam().expected;
        expected.isDark = true;
        return expected;
    }
};

TEST_P(Setting, isReadAtTheStart) {
    const auto& setting = GetParam();
    Settings settings;
    settings[common][QStringLiteral("color-scheme")] = 1U;
    settings[setting.space][QLatin1String(setting.key)] = setting.value;
    tell(settings);
    begin();
    ASSERT_TRUE(awaitDark(true));
    EXPECT_EQ(subject_->appearance(), expected());
}

TEST_P(Setting, isFollowed) {
    tell({});
    beginAndAwaitTheReading();
    change(GetParam().space, GetParam().key, GetParam().value);
    awaitChangeToDark();
    EXPECT_EQ(subject_->appearance(), expected());
}

INSTANTIATE_TEST_SUITE_P(Table, Setting, settingCases, [](const auto& one) { return one.param.name; });

TEST_F(RecordedAppearance, asksForWhatItFollowsAlone) {
    tell({});
    beginAndAwaitTheReading();
    EXPECT_EQ(service_->calls(readAll)[0].arguments()[0].toStringList(),
              (QStringList{common, gnome, gnomeAccess}));
}

TEST_F(RecordedAppearance, keepsTheLastGoodValue) {
    tell({{gnome, {{QStringLiteral("text-scaling-factor"), 2.0}}}});
    begin();
    ASSERT_TRUE(test::await([&] { return subject_->appearance().textScale == 2.0; }));
    change(gnome, "text-scaling-factor", notANumber);
    awaitChangeToDark();
    EXPECT_EQ(subject_->appearance().textScale, 2.0);
}

TEST_F(RecordedAppearance, tellsOfChangesAlone) {
    tell({});
    beginAndAwaitTheReading();
    int changes = 0;
    subject_->observe([&] { ++changes; });
    change(common, "contrast", 0U);
    change(common, "accent", 3U);
    awaitChangeToDark();
    change(common, "color-scheme", 1U);
    change(common, "color-scheme", 2U);
    ASSERT_TRUE(awaitDark(false));
    EXPECT_EQ(changes, 2);
}

TEST_F(RecordedAppearance, replacesTheObserverBefore) {
    tell({});
    beginAndAwaitTheReading();
    bool isFirstCalled = false;
    bool isSecondCalled = false;
    subject_->observe([&] { isFirstCalled = true; });
    subject_->observe([&] { isSecondCalled = true; });
    awaitChangeToDark();
    EXPECT_FALSE(isFirstCalled);
    EXPECT_TRUE(isSecondCalled);
}

TEST_F(RecordedAppearance, passesOverSignalsOfOtherTypes) {
    tell({});
    beginAndAwaitTheReading();
    const QString changed = QStringLiteral("SettingChanged");
    service_->sendSignal(settingsInterface, changed, {});
    service_->sendSignal(settingsInterface, changed, {common, QStringLiteral("contrast"), 1U});
    service_->sendSignal(settingsInterface, changed, {common, QStringLiteral("contrast")});
    service_->sendSignal(settingsInterface, changed, {1U, 2U, QVariant::fromValue(QDBusVariant(1U))});
    awaitChangeToDark();
    EXPECT_EQ(subject_->appearance(), (Appearance{.isDark = true}));
}

TEST_F(RecordedAppearance, isReadAgainFromAPortalThatStartsAgain) {
    tell({{common, {{QStringLiteral("color-scheme"), 1U}, {QStringLiteral("contrast"), 1U}}}});
    begin();
    ASSERT_TRUE(awaitDark(true));
    service_.reset();
    startPortal();
    tell({{gnome, {{QStringLiteral("text-scaling-factor"), 2.0}}}});
    EXPECT_TRUE(test::await([&] { return subject_->appearance() == Appearance{.textScale = 2.0}; }));
}

TEST_F(RecordedAppearance, staysWhenThePortalGoes) {
    tell({{common, {{QStringLiteral("color-scheme"), 1U}}}});
    begin();
    ASSERT_TRUE(awaitDark(true));
    bool isGone = false;
    QDBusServiceWatcher watcher(portal, bus_.connect(), QDBusServiceWatcher::WatchForUnregistration);
    QObject::connect(&watcher, &QDBusServiceWatcher::serviceUnregistered, &watcher, [&] { isGone = true; });
    service_.reset();
    ASSERT_TRUE(test::await([&] { return isGone; }));
    EXPECT_TRUE(subject_->appearance().isDark);
}

TEST_F(RecordedAppearance, isThatOfAPortalThatComesLater) {
    service_.reset();
    begin();
    startPortal();
    tell({{common, {{QStringLiteral("color-scheme"), 1U}}}});
    EXPECT_TRUE(awaitDark(true));
}

struct RefusalCase {
    std::string name;
    std::function<void(test::RecordingService&)> arrange;
};

class RefusedAppearance : public RecordedAppearance, public testing::WithParamInterface<RefusalCase> {};

TEST_P(RefusedAppearance, isTheDefaultAndStillFollowed) {
    GetParam().arrange(*service_);
    begin(200ms);
    ASSERT_TRUE(test::await([&] { return service_->count(readAll) == 1; }));
    EXPECT_EQ(subject_->appearance(), Appearance{});
    awaitChangeToDark();
}

INSTANTIATE_TEST_SUITE_P(
    Table, RefusedAppearance,
    testing::Values(RefusalCase{"error", [](auto& service) { service.answerWithError(readAll); }},
                    RefusalCase{"silence", [](auto& service) { service.neverAnswer(readAll); }},
                    RefusalCase{"nothing", [](auto& service) { service.answerWith(readAll, {}); }},
                    RefusalCase{"word",
                                [](auto& service) { service.answerWith(readAll, {QStringLiteral("x")}); }},
                    RefusalCase{"flat", [](auto& service) { service.answerWith(readAll, {QVariantMap()}); }}),
    [](const auto& one) { return one.param.name; });

TEST(Appearances, withoutABusAreTheDefault) {
    PortalAppearance subject(test::noBus());
    bool isTurned = false;
    QMetaObject::invokeMethod(
        &subject, [&] { isTurned = true; }, Qt::QueuedConnection);
    ASSERT_TRUE(test::await([&] { return isTurned; }));
    EXPECT_EQ(subject.appearance(), Appearance{});
}

} // namespace
} // namespace quillbook
