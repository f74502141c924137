#include "tools/backup/BackupIndex.h"

namespace quillbook::sample {
namespace {

constexpr std::int64_t fileFlags = 1;
constexpr std::int64_t folderFlags = 2;
constexpr std::string_view insertion =
    "INTO Files (fileID, domain, relativePath, flags, file) VALUES (?, ?, ?, ?, ?)";

} // namespace

/// Until the index is finished nobody misses it, so that neither journal nor flushing is needed.
BackupIndex::Tables::Tables(WritableDatabase& database) {
    database.execute(
        "PRAGMA page_size = 4096; PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; BEGIN;"
        "CREATE TABLE Files (fileID TEXT PRIMARY KEY, domain TEXT, relativePath TEXT, flags INTEGER, "
        "file BLOB);"
        "CREATE TABLE Properties (key TEXT PRIMARY KEY, value BLOB);");
}

BackupIndex::BackupIndex(const std::filesystem::path& file)
    : database_(file), file_(database_, "INSERT " + std::string(insertion)),
      folder_(database_, "INSERT OR IGNORE " + std::string(insertion)) {}

void BackupIndex::addFile(std::string_view fileID, std::string_view domain, std::string_view relativePath,
                          const Data& fileBlob) {
    file_.run({fileID, domain, relativePath, fileFlags, std::span<const std::uint8_t>(fileBlob)});
}

void BackupIndex::addFolder(std::string_view fileID, std::string_view domain, std::string_view relativePath,
                            const Data& fileBlob) {
    folder_.run({fileID, domain, relativePath, folderFlags, std::span<const std::uint8_t>(fileBlob)});
}

void BackupIndex::finish(ManifestJournal journal) {
    database_.execute("CREATE INDEX FilesDomainIdx ON Files (domain);"
                      "CREATE INDEX FilesRelativePathIdx ON Files (relativePath);"
                      "CREATE INDEX FilesFlagsIdx ON Files (flags);"
                      "COMMIT;");
    database_.execute(journal == ManifestJournal::writeAheadLog ? "PRAGMA journal_mode = WAL"
                                                                : "PRAGMA journal_mode = DELETE");
}

} // namespace quillbook::sample
