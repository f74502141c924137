#include "core/text/Localization.h"
#include "tests/screens/Interaction.h"
#include "tests/screens/StateJSON.h"
#include "tests/screens/TextFit.h"

#include <QQuickItem>
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

namespace quillbook::test {
namespace {

namespace fs = std::filesystem;

fs::path goldenFile(const std::string& name) {
    const char* source = std::getenv("QUILLBOOK_SOURCE");
    return fs::path(source == nullptr ? "." : source) / "tests/screens/states" / (name + ".json");
}

std::string contentOf(const fs::path& file) {
    std::ifstream in(file);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

/// Where a folder is given, the pictures go there for people to look at.
void keepPicture(ScreenStage& stage, const std::string& name) {
    const char* folder = std::getenv("QUILLBOOK_PICTURES");
    if (folder == nullptr) return;
    const fs::path file = fs::path(folder) / (name + ".png");
    EXPECT_TRUE(stage.picture().save(QString::fromStdString(file.string())));
}

std::string joined(const std::vector<std::string>& lines) {
    std::string all;
    for (const std::string& line : lines)
        all += line + "\n";
    return all;
}

void expectThatAllFits(ScreenStage& stage) {
    int seen = 0;
    EXPECT_EQ(joined(textsThatDoNotFit(*stage.window->contentItem(), seen)), "");
    EXPECT_GT(seen, 2) << "nothing was shown";
    int bars = 0;
    EXPECT_EQ(joined(textsThatOverlapInBars(*stage.window->contentItem(), bars)), "");
}

/// Other languages need more room: here each text grows by two fifths.
std::string longerWords(std::string_view english) {
    const std::size_t more = (english.size() * 2 + 4) / 5;
    std::string longer(english);
    for (std::size_t each = 0; each < more; ++each)
        longer += each % 6 == 0 ? ' ' : 'm';
    return longer;
}

class ScreenStateTest : public ScreenStage, public testing::WithParamInterface<ScreenState> {
protected:
    void SetUp() override { GetParam().prepare(*this); }
    ~ScreenStateTest() override { useTranslation({}); }

    void openSmall(const Appearance& wanted) {
        open(wanted);
        window->resize(window->minimumSize());
        refresh();
        if (GetParam().use) GetParam().use(*this);
    }
};

TEST_P(ScreenStateTest, tellsWhatTheModelHolds) {
    adapter = std::make_unique<AppModelAdapter>(model, services);
    const std::string state = stateJSON(*adapter);
    if (std::getenv("QUILLBOOK_WRITE_STATES") != nullptr) std::ofstream(goldenFile(GetParam().name)) << state;
    EXPECT_EQ(state, contentOf(goldenFile(GetParam().name)));
}

TEST_P(ScreenStateTest, fitsInLightAndDark) {
    openSmall({.hasReducedMotion = true});
    expectThatAllFits(*this);
    EXPECT_EQ(joined(controlsWithoutName(*window->contentItem())), "");
    const int light = picture().pixelColor(2, 2).lightness();
    keepPicture(*this, std::string(GetParam().name) + "-light");
    appearance->change({.isDark = true, .hasReducedMotion = true});
    refresh();
    expectThatAllFits(*this);
    EXPECT_LT(picture().pixelColor(2, 2).lightness(), light / 2);
    keepPicture(*this, std::string(GetParam().name) + "-dark");
}

TEST_P(ScreenStateTest, fitsWithTextTwiceAsLarge) {
    openSmall({.hasHighContrast = true, .hasReducedMotion = true, .textScale = 2});
    expectThatAllFits(*this);
    keepPicture(*this, std::string(GetParam().name) + "-large");
}

TEST_P(ScreenStateTest, fitsWithLongerWords) {
    useTranslation(longerWords);
    openSmall({.hasReducedMotion = true});
    expectThatAllFits(*this);
    keepPicture(*this, std::string(GetParam().name) + "-longer");
}

INSTANTIATE_TEST_SUITE_P(States, ScreenStateTest, testing::ValuesIn(screenStates()), [](const auto& test) {
    std::string name = test.param.name;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

/// States in which large text and long words come together.
class LargeLongStates : public Interaction, public testing::WithParamInterface<const char*> {
protected:
    ~LargeLongStates() override { useTranslation({}); }
};

TEST_P(LargeLongStates, fit) {
    useTranslation(longerWords);
    at(GetParam(), {.hasReducedMotion = true, .textScale = 2});
    window->resize(window->minimumSize());
    refresh();
    expectThatAllFits(*this);
    int bars = 0;
    textsThatOverlapInBars(*window->contentItem(), bars);
    EXPECT_EQ(bars, 1);
    keepPicture(*this, std::string(GetParam()) + "-large-longer");
}

TEST_F(Interaction, textsThatCoverEachOtherInABarAreSeen) {
    at("onboarding-1");
    int bars = 0;
    EXPECT_EQ(joined(textsThatOverlapInBars(*window->contentItem(), bars)), "");
    EXPECT_EQ(bars, 1);
    button("Skip")->setX(window->width() / 2 - 40);
    refresh();
    EXPECT_EQ(joined(textsThatOverlapInBars(*window->contentItem(), bars)),
              "\"Skip\" lies over another text of its bar\n");
}

INSTANTIATE_TEST_SUITE_P(States, LargeLongStates,
                         testing::Values("onboarding-2", "onboarding-replayed-end", "setup-prior-news",
                                         "setup-guide"),
                         [](const auto& test) {
                             std::string name = test.param;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

struct Look {
    const char* name;
    Appearance appearance;
    bool hasLongerWords = false;

    friend std::ostream& operator<<(std::ostream& out, const Look& look) { return out << look.name; }
};

/// The survey that follows takes the outcome away: it is looked at when it is announced.
class RecoveredMoment : public ScreenStage {
protected:
    RecoveredMoment() {
        atSetupWithReport(*this);
        caches->outcome = {.recoveredCount = 3,
                           .failedCount = 1,
                           .manifestURL = "/home/ada/recovered/recovery-manifest.json",
                           .recoveredBytes = 3'750'000};
    }
    ~RecoveredMoment() override { useTranslation({}); }

    /// Recovers; `look` is called while the outcome is on show.
    template <typename Looking>
    void recover(Looking look) {
        QObject::connect(adapter.get(), &AppModelAdapter::recoveryChanged, window, [&] {
            if (adapter->recovery().state == QStringLiteral("recovered")) look();
        });
        adapter->recoverFromCaches();
        settle();
        EXPECT_EQ(adapter->recovery().state, QStringLiteral("report")) << "the survey that follows";
    }
};

class RecoveredLook : public RecoveredMoment, public testing::WithParamInterface<Look> {};

TEST_P(RecoveredLook, fits) {
    if (GetParam().hasLongerWords) useTranslation(longerWords);
    open(GetParam().appearance);
    window->resize(window->minimumSize());
    refresh();
    int looks = 0;
    recover([&] {
        ++looks;
        refresh();
        expectThatAllFits(*this);
        keepPicture(*this, std::string("recovery-recovered-") + GetParam().name);
    });
    EXPECT_EQ(looks, 1);
}

INSTANTIATE_TEST_SUITE_P(
    Looks, RecoveredLook,
    testing::Values(Look{"light", {.hasReducedMotion = true}},
                    Look{"dark", {.isDark = true, .hasReducedMotion = true}},
                    Look{"large", {.hasHighContrast = true, .hasReducedMotion = true, .textScale = 2}},
                    Look{"longer", {.hasReducedMotion = true}, true}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(RecoveredMoment, isShownUntilTheCountsAreMadeAnew) {
    open();
    QStringList lines;
    recover([&] { lines = adapter->recovery().lines; });
    EXPECT_EQ(lines.join(u'\n').toStdString(), "Recovered: 3 attachments (3.8 MB)\n"
                                               "1 copies failed and remain missing.\n"
                                               "Manifest: recovery-manifest.json");
}

TEST(RecoveryOutcomeWords, tellOfNoFailuresWhereThereAreNone) {
    const RecoveryFacts facts = recoveryFacts(CacheRecoveryStatus{RecoveryOutcome{.recoveredCount = 3}});
    EXPECT_EQ(facts.lines.join(u'\n').toStdString(), "Recovered: 3 attachments (0 bytes)");
}

} // namespace
} // namespace quillbook::test
