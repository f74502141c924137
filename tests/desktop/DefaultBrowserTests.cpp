#include "shell/desktop/linux/DefaultBrowser.h"
#include "tests/desktop/PrivateDesktop.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quillbook {
namespace {

struct BrowserCase {
    std::string name;
    std::vector<std::string> entries; ///< Of those that exist, below the data folder's "applications".
    std::vector<std::pair<std::string, std::string>> lists;
    std::optional<std::string> expected;
};

std::string defaults(const std::string& value) {
    return "[Default Applications]\ntext/html=editor.desktop\nx-scheme-handler/https=" + value + "\n";
}

class DefaultBrowser : public test::PrivateDesktop, public testing::WithParamInterface<BrowserCase> {};

TEST_P(DefaultBrowser, isWhatTheListsName) {
    setVariable("XDG_CURRENT_DESKTOP", "Mist:Fog");
    setVariable("XDG_DATA_DIRS", home_ / "system-data");
    const std::filesystem::path applications = home_ / "data/applications";
    for (const auto& entry : GetParam().entries) {
        home_.write("data/applications/" + entry, "[Desktop Entry]\n");
    }
    for (const auto& [file, text] : GetParam().lists) {
        home_.write(file, text);
    }
    std::optional<std::filesystem::path> expected;
    if (GetParam().expected) expected = applications / *GetParam().expected;
    EXPECT_EQ(defaultBrowserEntry(), expected);
}

const std::vector<std::string> both = {"fox.desktop", "owl.desktop"};

INSTANTIATE_TEST_SUITE_P(
    Table, DefaultBrowser,
    testing::Values(
        BrowserCase{"noLists", both, {}, std::nullopt},
        BrowserCase{
            "theUsersChoice", both, {{"config/mimeapps.list", defaults("fox.desktop;")}}, "fox.desktop"},
        BrowserCase{
            "withoutSemicolon", both, {{"config/mimeapps.list", defaults("fox.desktop")}}, "fox.desktop"},
        BrowserCase{"theNextWhereTheFirstIsGone",
                    both,
                    {{"config/mimeapps.list", defaults("gone.desktop;owl.desktop;")}},
                    "owl.desktop"},
        BrowserCase{"theSystemsWhereTheUsersIsGone",
                    both,
                    {{"config/mimeapps.list", defaults("gone.desktop")},
                     {"system-config/mimeapps.list", defaults("owl.desktop")}},
                    "owl.desktop"},
        BrowserCase{"theUserBeforeTheSystem",
                    both,
                    {{"config/mimeapps.list", defaults("fox.desktop")},
                     {"system-config/mimeapps.list", defaults("owl.desktop")}},
                    "fox.desktop"},
        BrowserCase{"theDesktopsOwnListFirst",
                    both,
                    {{"config/mimeapps.list", defaults("fox.desktop")},
                     {"config/fog-mimeapps.list", defaults("owl.desktop")}},
                    "owl.desktop"},
        BrowserCase{"theDataFolderToo",
                    both,
                    {{"data/applications/mimeapps.list", defaults("fox.desktop")}},
                    "fox.desktop"},
        BrowserCase{"anAdditionWithoutADefault",
                    both,
                    {{"config/mimeapps.list",
                      "[Added Associations]\nx-scheme-handler/https=owl.desktop;fox.desktop;\n"}},
                    "owl.desktop"},
        BrowserCase{
            "whatIsInstalledWithoutAChoice",
            both,
            {{"data/applications/mimeinfo.cache", "[MIME Cache]\nx-scheme-handler/https=fox.desktop;\n"}},
            "fox.desktop"},
        BrowserCase{
            "removalsAreNoDefaults",
            both,
            {{"config/mimeapps.list", "[Removed Associations]\nx-scheme-handler/https=fox.desktop;\n"}},
            std::nullopt},
        BrowserCase{"entriesInFolders",
                    {"maker/web-browser.desktop"},
                    {{"config/mimeapps.list", defaults("maker-web-browser.desktop")}},
                    "maker/web-browser.desktop"},
        BrowserCase{"noEntryOutsideTheFolders",
                    {"../outside.desktop"},
                    {{"config/mimeapps.list", defaults("../outside.desktop;/etc/passwd;")}},
                    std::nullopt},
        BrowserCase{"blanksAndForeignLineEnds",
                    both,
                    {{"config/mimeapps.list",
                      "# x\r\n [Default Applications] \r\n x-scheme-handler/https = fox.desktop ; \r\n"}},
                    "fox.desktop"},
        BrowserCase{
            "noise",
            both,
            {{"config/mimeapps.list", std::string("\0\xFF[[]]\n===\n;;;\n[Default Applications\n", 38)}},
            std::nullopt},
        BrowserCase{"anEmptyChoice", both, {{"config/mimeapps.list", defaults(";;")}}, std::nullopt}),
    [](const auto& one) { return one.param.name; });

} // namespace
} // namespace quillbook
