#include "platform/UserFolders.h"
#include "tests/support/TemporaryFolder.h"

#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

namespace quillbook {
namespace {

using test::TemporaryFolder;
using Path = std::optional<std::filesystem::path>;

/// Environment variables of one test; the old ones come back with its end.
class Environment {
public:
    Environment() {
        for (const char* name : {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME"}) {
            const char* value = std::getenv(name);
            old_.emplace_back(name, value != nullptr ? std::optional<std::string>(value) : std::nullopt);
            ::unsetenv(name);
        }
    }
    ~Environment() {
        for (const auto& [name, value] : old_) {
            if (value) {
                ::setenv(name.c_str(), value->c_str(), 1);
            } else {
                ::unsetenv(name.c_str());
            }
        }
    }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

    void set(const char* name, const std::string& value) const { ::setenv(name, value.c_str(), 1); }

private:
    std::vector<std::pair<std::string, std::optional<std::string>>> old_;
};

TEST(UserFolders, homeIsTheVariable) {
    const Environment environment;
    environment.set("HOME", "/home/ada");
    EXPECT_EQ(UserFolders::current().home, "/home/ada");
}

TEST(UserFolders, homeOfThePasswordDatabaseWithoutTheVariable) {
    const Environment environment;
    const passwd* entry = ::getpwuid(::getuid());
    if (entry == nullptr) {
        std::cout << "Not checked: this user has no entry in the password database.\n";
        return;
    }
    EXPECT_EQ(UserFolders::current().home, entry->pw_dir);
}

TEST(UserFolders, emptyOrRelativeHomeCountsAsUnset) {
    const Environment environment;
    const auto home = UserFolders::current().home;
    for (const char* value : {"", "ada", "./ada"}) {
        environment.set("HOME", value);
        EXPECT_EQ(UserFolders::current().home, home) << value;
    }
}

TEST(UserFolders, applicationSupportLiesBelowHome) {
    const Environment environment;
    environment.set("HOME", "/home/ada");
    EXPECT_EQ(UserFolders::current().applicationSupport, "/home/ada/.local/share");
}

TEST(UserFolders, applicationSupportIsTheDataFolderOfTheDesktop) {
    const Environment environment;
    environment.set("HOME", "/home/ada");
    environment.set("XDG_DATA_HOME", "/data/ada");
    EXPECT_EQ(UserFolders::current().applicationSupport, "/data/ada");
}

TEST(UserFolders, relativeDataFolderCountsAsUnset) {
    const Environment environment;
    environment.set("HOME", "/home/ada");
    environment.set("XDG_DATA_HOME", "data");
    EXPECT_EQ(UserFolders::current().applicationSupport, "/home/ada/.local/share");
}

TEST(UserFolders, belowAHomeTheEnvironmentDoesNotCount) {
    const TemporaryFolder home;
    const Environment environment;
    environment.set("HOME", "/home/ada");
    environment.set("XDG_DATA_HOME", "/data/ada");
    environment.set("XDG_CONFIG_HOME", "/configuration/ada");
    EXPECT_EQ(UserFolders::below(home.path()).home, home.path());
    EXPECT_EQ(UserFolders::below(home.path()).applicationSupport, home / ".local/share");
}

TEST(UserFolders, downloadsAreAbsentWithoutAnyFolder) {
    const TemporaryFolder home;
    EXPECT_EQ(UserFolders::below(home.path()).downloads, std::nullopt);
}

TEST(UserFolders, downloadsHaveTheUsualName) {
    const TemporaryFolder home;
    std::filesystem::create_directory(home / "Downloads");
    EXPECT_EQ(UserFolders::below(home.path()).downloads, home / "Downloads");
}

TEST(UserFolders, downloadsAreNoFile) {
    const TemporaryFolder home;
    home.write("Downloads", "text");
    EXPECT_EQ(UserFolders::below(home.path()).downloads, std::nullopt);
}

TEST(UserFolders, configurationFolderIsTheVariables) {
    const TemporaryFolder home;
    const Environment environment;
    environment.set("HOME", home.path());
    environment.set("XDG_CONFIG_HOME", home / "conf");
    std::filesystem::create_directory(home / "Loads");
    home.write("conf/user-dirs.dirs", "XDG_DOWNLOAD_DIR=\"$HOME/Loads\"\n");
    EXPECT_EQ(UserFolders::current().downloads, home / "Loads");
}

struct LineCase {
    const char* name;
    std::string lines; ///< HERE stands for the home folder.
    const char* folder;
};

class UserDirs : public testing::TestWithParam<LineCase> {};

TEST_P(UserDirs, tellTheDownloads) {
    const TemporaryFolder home;
    for (const char* folder : {"Downloads", "Loads", "Heruntergeladenes \"neu\"", "Téléchargements"}) {
        std::filesystem::create_directory(home / folder);
    }
    std::string lines = GetParam().lines;
    if (const auto at = lines.find("HERE"); at != std::string::npos)
        lines.replace(at, 4, home.path().string());
    home.write(".config/user-dirs.dirs", lines);
    EXPECT_EQ(UserFolders::below(home.path()).downloads, home / GetParam().folder);
}

INSTANTIATE_TEST_SUITE_P(
    Table, UserDirs,
    testing::Values(
        LineCase{"belowHome", "XDG_DOWNLOAD_DIR=\"$HOME/Loads\"\n", "Loads"},
        LineCase{"absolute", "XDG_DOWNLOAD_DIR=\"HERE/Loads\"\n", "Loads"},
        LineCase{"withoutALineBreakAtTheEnd", "XDG_DOWNLOAD_DIR=\"$HOME/Loads\"", "Loads"},
        LineCase{"indented", " \tXDG_DOWNLOAD_DIR=\"$HOME/Loads\"\n", "Loads"},
        LineCase{"amongOthers",
                 "# "
                 "comment\nXDG_DESKTOP_DIR=\"$HOME/Desk\"\nXDG_DOWNLOAD_DIR=\"$HOME/"
                 "Loads\"\nXDG_MUSIC_DIR=\"$HOME/M\"\n",
                 "Loads"},
        LineCase{"lastOneCounts", "XDG_DOWNLOAD_DIR=\"$HOME/Downloads\"\nXDG_DOWNLOAD_DIR=\"$HOME/Loads\"\n",
                 "Loads"},
        LineCase{"escapedQuotes", "XDG_DOWNLOAD_DIR=\"$HOME/Heruntergeladenes \\\"neu\\\"\"\n",
                 "Heruntergeladenes \"neu\""},
        LineCase{"beyondASCII", "XDG_DOWNLOAD_DIR=\"$HOME/Téléchargements\"\n", "Téléchargements"},
        LineCase{"commentedOut", "#XDG_DOWNLOAD_DIR=\"$HOME/Loads\"\n", "Downloads"},
        LineCase{"relativePathIsNone", "XDG_DOWNLOAD_DIR=\"Loads\"\n", "Downloads"},
        LineCase{"otherVariableIsNone", "XDG_DOWNLOAD_DIR=\"$USER/Loads\"\n", "Downloads"},
        LineCase{"withoutQuotesIsNone", "XDG_DOWNLOAD_DIR=$HOME/Loads\n", "Downloads"},
        LineCase{"emptyFile", "", "Downloads"}, //
        LineCase{"emptyValue", "XDG_DOWNLOAD_DIR=\"\"\n", "Downloads"},
        LineCase{"binaryRubbish", std::string("\0\xFF\n\n\"\\", 6), "Downloads"},
        LineCase{"loneBackslashAtTheEnd", "XDG_DOWNLOAD_DIR=\"\\", "Downloads"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(UserFolders, downloadsThatWereRemovedAreAbsent) {
    const TemporaryFolder home;
    home.write(".config/user-dirs.dirs", "XDG_DOWNLOAD_DIR=\"$HOME/Gone\"\n");
    EXPECT_EQ(UserFolders::below(home.path()).downloads, std::nullopt);
}

TEST(UserFolders, doubledSlashBehindHomeStaysBelowHome) {
    const TemporaryFolder home;
    std::filesystem::create_directory(home / "Loads");
    home.write(".config/user-dirs.dirs", "XDG_DOWNLOAD_DIR=\"$HOME//Loads\"\n");
    const Path downloads = UserFolders::below(home.path()).downloads;
    ASSERT_TRUE(downloads);
    EXPECT_EQ(downloads->lexically_normal(), home / "Loads");
}

} // namespace
} // namespace quillbook
