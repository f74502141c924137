#include "core/text/Localization.h"
#include "tests/screens/ScreenStates.h"
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
}

class ScreenStateTest : public ScreenStage, public testing::WithParamInterface<ScreenState> {
protected:
    void SetUp() override { GetParam().prepare(*this); }
    ~ScreenStateTest() override { useTranslation({}); }

    void openSmall(const Appearance& wanted) {
        open(wanted);
        window->resize(window->minimumSize());
        refresh();
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
    useTranslation([](std::string_view english) {
        // Other languages need more room: here each text grows by two fifths.
        const std::size_t more = (english.size() * 2 + 4) / 5;
        std::string longer(english);
        for (std::size_t each = 0; each < more; ++each)
            longer += each % 6 == 0 ? ' ' : 'm';
        return longer;
    });
    openSmall({.hasReducedMotion = true});
    expectThatAllFits(*this);
    keepPicture(*this, std::string(GetParam().name) + "-longer");
}

INSTANTIATE_TEST_SUITE_P(States, ScreenStateTest, testing::ValuesIn(screenStates()), [](const auto& test) {
    std::string name = test.param.name;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

class RecoveredMoment : public ScreenStage {};

TEST_F(RecoveredMoment, isShownUntilTheCountsAreMadeAnew) {
    atSetupWithReport(*this);
    open();
    caches->outcome = {.recoveredCount = 3,
                       .failedCount = 1,
                       .manifestURL = "/home/ada/recovered/recovery-manifest.json",
                       .recoveredBytes = 3'750'000};
    QStringList lines;
    QObject::connect(adapter.get(), &AppModelAdapter::recoveryChanged, window, [&] {
        if (adapter->recovery().state != QStringLiteral("recovered")) return;
        lines = adapter->recovery().lines;
        expectThatAllFits(*this);
        keepPicture(*this, "recovery-recovered-light");
    });
    adapter->recoverFromCaches();
    settle();
    EXPECT_EQ(lines.join(u'\n').toStdString(), "Recovered: 3 attachments (3.8 MB)\n"
                                               "1 copies failed and remain missing.\n"
                                               "Manifest: recovery-manifest.json");
    EXPECT_EQ(adapter->recovery().state, QStringLiteral("report")) << "the survey that follows";
}

TEST_F(RecoveredMoment, withoutFailuresTellsOfNone) {
    const RecoveryFacts facts = recoveryFacts(CacheRecoveryStatus{RecoveryOutcome{.recoveredCount = 3}});
    EXPECT_EQ(facts.lines.join(u'\n').toStdString(), "Recovered: 3 attachments (0 bytes)");
}

} // namespace
} // namespace quillbook::test
