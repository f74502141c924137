#include "backup/BackupManifest.h"

#include "core/text/Localization.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace quillbook {
namespace {

const std::string entryQuery = "SELECT fileID, domain, relativePath, flags, file FROM Files "
                               "WHERE domain = ? AND relativePath = ? LIMIT 1";

bool isHexadecimalDigit(char character) {
    return (character >= '0' && character <= '9') || (character >= 'A' && character <= 'F') ||
           (character >= 'a' && character <= 'f');
}

/// A file's ID becomes its path: what passes holds no separator and no dot.
bool isFileID(std::string_view text) {
    constexpr std::size_t fileIDLength = 40;
    return text.size() == fileIDLength && std::all_of(text.begin(), text.end(), isHexadecimalDigit);
}

} // namespace

ManifestError::ManifestError(std::string fileID) : malformedFileID(std::move(fileID)) {}

std::string ManifestError::description() const {
    return localized("This backup's file index is malformed, so Quillbook stopped rather than read from it.");
}

BackupManifest::BackupManifest(std::shared_ptr<SQLiteDatabase> database, std::filesystem::path backupURL)
    : database_(std::move(database)), backupURL_(std::move(backupURL)) {}

std::optional<ManifestEntry> BackupManifest::entry(const std::string& domain,
                                                   const std::string& relativePath) const {
    const std::array<SQLiteValue, 2> bindings = {domain, relativePath};
    const auto rows = database_->query(entryQuery, bindings);
    const auto fileID = rows.empty() ? std::nullopt : rows.front().text("fileID");
    if (!fileID) return std::nullopt;
    if (!isFileID(*fileID)) throw ManifestError(std::string(*fileID));
    const SQLiteRow& row = rows.front();
    const auto blob = row.blob("file").value_or(std::span<const std::uint8_t>());
    return ManifestEntry{.fileID = std::string(*fileID),
                         .domain = std::string(row.text("domain").value_or(domain)),
                         .relativePath = std::string(row.text("relativePath").value_or(relativePath)),
                         .flags = row.storedInteger("flags").value_or(0),
                         .fileBlob = Data(blob.begin(), blob.end())};
}

std::filesystem::path BackupManifest::storedFile(const ManifestEntry& entry) const {
    return backupURL_ / entry.fileID.substr(0, 2) / entry.fileID;
}

} // namespace quillbook
