#include "shell/application/UserPreferences.h"

#include "core/model/PreferenceKeys.h"

#include <QSettings>
#include <QString>
#include <QVariant>
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
constexpr std::uintmax_t greatestFile = 65'536;

constexpr fs::perms ownerAlone = fs::perms::owner_read | fs::perms::owner_write;

[[maybe_unused]] bool isKnown(std::string_view key) {
    return std::find(knownKeys.begin(), knownKeys.end(), key) != knownKeys.end();
}

QString qtText(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// Truth values stand in the file as these words. What this process wrote itself comes back as it was given.
std::optional<bool> truthOf(const QVariant& value) {
    if (value.metaType().id() == QMetaType::Bool) return value.toBool();
    if (value.metaType().id() != QMetaType::QString) return std::nullopt;
    const QString word = value.toString();
    if (word == QLatin1String("true")) return true;
    if (word == QLatin1String("false")) return false;
    return std::nullopt;
}

/// What may be opened at all: a pipe would keep a reader waiting.
bool isFileOrNothing(const fs::path& file) {
    std::error_code failure;
    const auto kind = fs::status(file, failure).type();
    return kind == fs::file_type::regular || kind == fs::file_type::not_found;
}

QString nameOf(const fs::path& file) {
    return QString::fromStdString(file.string());
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
    values_[std::string(key)] = value;
    save();
}

void UserPreferences::load() {
    std::error_code failure;
    if (!isFileOrNothing(file_) || !fs::exists(file_, failure)) return;
    isDamaged_ = fs::file_size(file_, failure) > greatestFile;
    if (isDamaged_) return;
    const QSettings settings(nameOf(file_), QSettings::IniFormat);
    isDamaged_ = settings.status() == QSettings::FormatError;
    if (isDamaged_) return;
    for (const std::string_view key : knownKeys) {
        if (const auto value = truthOf(settings.value(qtText(key)))) values_[std::string(key)] = *value;
    }
}

void UserPreferences::save() {
    if (!isFileOrNothing(file_)) return;
    std::error_code failure;
    if (std::exchange(isDamaged_, false)) fs::remove(file_, failure);
    QSettings settings(nameOf(file_), QSettings::IniFormat);
    settings.clear();
    for (const auto& [key, value] : values_)
        settings.setValue(qtText(key), value);
    settings.sync();
    if (settings.status() == QSettings::NoError) fs::permissions(file_, ownerAlone, failure);
}

fs::path preferencesFile(const std::optional<std::string>& configHome, const fs::path& home) {
    const bool isGiven = configHome && fs::path(*configHome).is_absolute();
    return (isGiven ? fs::path(*configHome) : home / ".config") / "Quillbook" / "Quillbook.conf";
}

} // namespace quillbook
