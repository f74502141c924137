#pragma once

#include "tools/backup/BackupWriter.h"
#include "tools/writing/SQLiteWriting.h"

namespace quillbook::sample {

/// Writes one new Manifest.db. Throws SampleError.
class BackupIndex {
public:
    explicit BackupIndex(const std::filesystem::path& file);

    void addFile(std::string_view fileID, std::string_view domain, std::string_view relativePath,
                 const Data& fileBlob);
    /// A folder that has a row already keeps it.
    void addFolder(std::string_view fileID, std::string_view domain, std::string_view relativePath,
                   const Data& fileBlob);
    /// Makes the indexes; only the one file remains. Call it once, last.
    void finish(ManifestJournal journal);

private:
    struct Tables {
        explicit Tables(WritableDatabase& database);
    };

    WritableDatabase database_;
    Tables tables_{database_};
    PreparedWrite file_;
    PreparedWrite folder_;
};

} // namespace quillbook::sample
