#include "platform/UserFolders.h"

#include "platform/FileReader.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include <pwd.h>
#include <unistd.h>

namespace quillbook {
namespace {

namespace fs = std::filesystem;

fs::path homeFolder() {
    if (const char* home = std::getenv("HOME"); home != nullptr && *home == '/') return home;
    std::vector<char> buffer(16'384);
    passwd entry{};
    passwd* found = nullptr;
    if (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr) {
        return found->pw_dir;
    }
    return "/";
}

/// XDG Base Directory Specification: a relative path counts as unset.
std::optional<fs::path> absoluteVariable(const char* name) {
    const char* value = std::getenv(name);
    if (value == nullptr || *value != '/') return std::nullopt;
    return value;
}

/// The value of a line `XDG_DOWNLOAD_DIR="$HOME/Downloads"` as xdg-user-dirs writes it: below $HOME or
/// absolute, nothing else.
std::optional<fs::path> userFolderOfLine(std::string_view line, const fs::path& home) {
    constexpr std::string_view start = "XDG_DOWNLOAD_DIR=\"";
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    if (line.substr(0, start.size()) != start) return std::nullopt;
    line.remove_prefix(start.size());
    std::string value;
    for (std::size_t index = 0; index < line.size() && line[index] != '"'; ++index) {
        if (line[index] == '\\' && index + 1 < line.size()) ++index;
        value += line[index];
    }
    constexpr std::string_view homeStart = "$HOME/";
    // Joined as texts: a second slash would make the rest an absolute path, which takes the home folder's
    // place.
    if (value.substr(0, homeStart.size()) == homeStart)
        return home.native() + value.substr(homeStart.size() - 1);
    if (!value.empty() && value.front() == '/') return value;
    return std::nullopt;
}

std::optional<fs::path> downloadsFolder(const fs::path& home, const fs::path& configuration) {
    std::optional<fs::path> downloads;
    try {
        const std::string lines = readWholeFile(configuration / "user-dirs.dirs", 1'048'576);
        for (std::string_view rest = lines; !rest.empty();) {
            const auto end = std::min(rest.find('\n'), rest.size());
            if (auto folder = userFolderOfLine(rest.substr(0, end), home)) downloads = std::move(folder);
            rest.remove_prefix(std::min(end + 1, rest.size()));
        }
    } catch (const std::exception&) {
        downloads.reset(); // Without the file, the usual name counts.
    }
    std::error_code failure;
    const fs::path folder = downloads.value_or(home / "Downloads");
    return fs::is_directory(folder, failure) ? std::optional(folder) : std::nullopt;
}

} // namespace

UserFolders UserFolders::current() {
    const fs::path home = homeFolder();
    const fs::path configuration = absoluteVariable("XDG_CONFIG_HOME").value_or(home / ".config");
    return UserFolders{
        .home = home,
        .applicationSupport = absoluteVariable("XDG_DATA_HOME").value_or(home / ".local/share"),
        .downloads = downloadsFolder(home, configuration),
    };
}

UserFolders UserFolders::below(const std::filesystem::path& home) {
    return UserFolders{
        .home = home,
        .applicationSupport = home / ".local/share",
        .downloads = downloadsFolder(home, home / ".config"),
    };
}

std::filesystem::path temporaryFolder() {
    std::error_code failure;
    const auto named = absoluteVariable("TMPDIR");
    return named && fs::is_directory(*named, failure) ? *named : fs::path("/tmp");
}

} // namespace quillbook
