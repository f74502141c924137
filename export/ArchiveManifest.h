#pragma once

#include "core/records/ArchiveWarning.h"
#include "core/records/RecordsJSON.h"
#include "core/records/SourceID.h"
#include "core/text/Date.h"

#include <cstdint>
#include <filesystem>
#include <stop_token>
#include <string>
#include <vector>

namespace quillbook {

struct ManifestFile {
    std::string path; ///< Relative to the album, "/" between components.
    std::int64_t byteSize = 0;
    std::string sha256; ///< 64 lower-case hexadecimal digits.

    bool operator==(const ManifestFile&) const = default;
};

/// What an album is and which files it holds; written out, it is the album's manifest.json
/// (docs/formats/album.md).
struct ArchiveManifest {
    std::int64_t schemaVersion = 1;
    std::string conversationTitle;
    SourceID sourceChatID;
    Date generatedAt; ///< When the conversation was loaded.
    std::int64_t sourceMessageCount = 0;
    std::int64_t availableMessageCount = 0; ///< Messages that were loaded.
    std::int64_t messageCount = 0;          ///< Messages in the album.
    std::int64_t attachmentRecordCount = 0;
    std::int64_t copiedAttachmentCount = 0;
    std::int64_t missingAttachmentCount =
        0; ///< Records without a file in the album, unreadable ones included.
    std::vector<ArchiveWarning> warnings;
    std::vector<ManifestFile> files; ///< By path; the manifest itself is not among them.

    bool operator==(const ArchiveManifest&) const = default;
};

/// The name of the file at the top of each album.
inline constexpr const char* manifestFileName = "manifest.json";

void writeJSON(JSONWriter& json, const ManifestFile& file);
void writeJSON(JSONWriter& json, const ArchiveManifest& manifest);
template <>
ManifestFile readJSON(const JSONValue& json);
template <>
ArchiveManifest readJSON(const JSONValue& json);

/// Every regular file below `root` with its size and digest, ascending by path. Passed over are hidden files
/// and folders, symbolic links, files named manifest.json, and folders that cannot be listed. Throws
/// FileError where a file cannot be read or its name is no UTF-8, which no manifest could hold, and
/// CancellationError.
std::vector<ManifestFile> makeManifestFiles(const std::filesystem::path& root, const std::stop_token& stop);

} // namespace quillbook
