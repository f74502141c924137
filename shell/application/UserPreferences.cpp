#include "shell/application/UserPreferences.h"

#include "core/model/PreferenceKeys.h"
#include "platform/AtomicFile.h"
#include "platform/FileError.h"
#include "platform/FileReader.h"
#include "platform/FolderCreation.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <system_error>
#include <utility>

namespace quillbook {
namespace {

namespace fs = std::filesystem;

constexpr std::array knownKeys = {preferenceKeys::includeJSON, preferenceKeys::includeMarkdown,
                                  preferenceKeys::includeCSV, preferenceKeys::onboardingCompleted};
// Four lines have a few hundred bytes.
constexpr std::size_t greatestFile = 65'536;
constexpr std::string_view section = "[General]";

bool isKnown(std::string_view key) {
    return std::find(knownKeys.begin(), knownKeys.end(), key) != knownKeys.end();
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    const auto start = std::min(text.find_first_not_of(blanks), text.size());
    return text.substr(start, text.find_last_not_of(blanks) + 1 - start);
}

std::optional<bool> truthOf(std::string_view word) {
    if (word == "true") return true;
    if (word == "false") return false;
    return std::nullopt;
}

std::map<std::string, bool, std::less<>> valuesIn(std::string_view text) {
    std::map<std::string, bool, std::less<>> values;
    bool isInSection = false;
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        const std::string_view line = trimmed(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.starts_with('[')) isInSection = line == section;
        const auto equals = line.find('=');
        if (!isInSection || equals == std::string_view::npos) continue;
        const std::string_view key = trimmed(line.substr(0, equals));
        const auto value = truthOf(trimmed(line.substr(equals + 1)));
        if (isKnown(key) && value) values[std::string(key)] = *value;
    }
    return values;
}

/// The file that is written: behind a link the one it names, so that the link stays. Nothing where a folder
/// or a pipe lies in the way.
std::optional<fs::path> writableFile(const fs::path& file) {
    std::error_code failure;
    const auto kind = fs::status(file, failure).type();
    if (kind == fs::file_type::not_found) return file;
    if (kind != fs::file_type::regular) return std::nullopt;
    auto target = fs::canonical(file, failure);
    return failure ? file : target;
}

/// Folders of configuration are the owner's alone (XDG base directories).
void createPrivateFolders(const fs::path& folder) {
    std::error_code failure;
    if (folder.empty() || fs::exists(folder, failure)) return;
    createPrivateFolders(folder.parent_path());
    createPrivateFolder(folder);
}

} // namespace

UserPreferences::UserPreferences(fs::path file) : file_(std::move(file)) {
    load();
}

std::optional<bool> UserPreferences::truth(std::string_view key) const {
    const auto found = values_.find(key);
    return found == values_.end() ? std::nullopt : std::optional(found->second);
}

void UserPreferences::setTruth(std::string_view key, bool value) {
    assert(isKnown(key));
    if (isStored_ && truth(key) == value) return;
    values_[std::string(key)] = value;
    save();
}

void UserPreferences::load() {
    try {
        values_ = valuesIn(readWholeFile(file_, greatestFile));
        isStored_ = true;
    } catch (const FileError&) {
        isStored_ = false;
    }
}

void UserPreferences::save() {
    isStored_ = false;
    std::string text(section);
    text += '\n';
    for (const auto& [key, value] : values_)
        text.append(key).append(value ? "=true\n" : "=false\n");
    const auto target = writableFile(file_);
    if (!target) return;
    try {
        createPrivateFolders(target->parent_path());
        writeFileAtomically(*target, text, FileAccess::ownerOnly);
        isStored_ = true;
    } catch (const FileError&) {
        // They last as long as the process.
    }
}

fs::path preferencesFile(const std::optional<std::string>& configHome, const fs::path& home) {
    const bool isGiven = configHome && fs::path(*configHome).is_absolute();
    return (isGiven ? fs::path(*configHome) : home / ".config") / "Quillbook" / "Quillbook.conf";
}

} // namespace quillbook
