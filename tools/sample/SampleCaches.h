#pragma once

#include "tools/sample/SampleOptions.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace quillbook::sample {

/// How a cache holds an attachment that is no longer in the library. The first two can be recovered.
enum class CacheForm {
    plain,      ///< Under its name, once.
    twice,      ///< Under its name, in two of the caches.
    aByteShort, ///< Under its name, without its last byte.
    hidden,     ///< In a hidden folder, and beside that under its name behind a point.
    link,       ///< As a symbolic link to a file outside the caches.
};

struct CachedAttachment {
    std::string name; ///< The last component of its path in the library.
    std::int64_t byteCount = 0;
    CacheForm form = CacheForm::plain;
    std::vector<std::filesystem::path> files; ///< What lies in the caches for it.

    bool operator==(const CachedAttachment&) const = default;
};

struct SampleCaches {
    std::vector<std::filesystem::path> folders;
    std::vector<CachedAttachment> attachments;

    bool operator==(const SampleCaches&) const = default;
};

/// The folders below the home folder where Messages in iCloud keeps copies: "Library/Caches/CloudKit",
/// "Library/Application Support/CloudKit", "Library/Messages/CloudKitMetaData".
std::vector<std::filesystem::path> sampleCacheFolders(const std::filesystem::path& home);

/// Throws SampleError where one of the folders that `writeSampleCaches` makes stands already.
void requireNoCaches(const std::filesystem::path& home);

/// Does what Messages in iCloud does to save space: takes the files of some attachments of that chat out of
/// the library, whose database stays as it is, and leaves copies in the caches. Seven files are taken, fewer
/// where the chat has fewer: a film and pictures if it has them. Throws SQLiteError and FileError.
SampleCaches writeSampleCaches(const SampleOptions& options, const std::filesystem::path& database,
                               std::int64_t chat);

/// Where the caches lie and what is in them, as a person reads it.
std::string describe(const SampleCaches& caches);

} // namespace quillbook::sample
