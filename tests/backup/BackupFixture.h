#pragma once

#include "backup/PreparedBackup.h"
#include "tests/support/FolderSnapshot.h"
#include "tests/support/TemporaryFolder.h"
#include "tools/backup/BackupWriter.h"

#include <functional>
#include <map>
#include <string>

#include <gmock/gmock.h>

namespace quillbook::test {

inline constexpr const char* backupPassword = "lake house";
/// Stands in every message and attachment of a fixture, so that a search of the disk finds what is left.
inline constexpr const char* knownPlaintext = "The lighthouse is open until nine";

enum class BackupKind { plain, encrypted };

/// A small backup that a test changes before or after it is written.
class BackupFixture : public testing::Test {
protected:
    BackupFixture();

    sample::BackupDescription description(BackupKind kind) const;
    /// Adds the Messages database, with one message that is only in its log, and the attachments "a.txt" and
    /// "b.txt".
    void addMessages(sample::BackupWriter& writer);
    /// Writes a sound backup.
    void write(BackupKind kind);
    /// Writes a backup of what `fill` adds.
    void write(BackupKind kind, const std::function<void(sample::BackupWriter&)>& fill);
    /// Gives the stored file of the Messages database or of an attachment.
    std::filesystem::path stored(const std::string& name) const { return stored_.at(name); }

    std::shared_ptr<PreparedBackup> open(BackupKind kind, const std::stop_token& stop = {}) const;
    /// The words of the error that opening ends with; empty if it doesn't.
    std::string failureOfOpening(BackupKind kind, const std::optional<std::string>& password) const;
    /// The working directories in the fixture's temporary folder, hidden entries as well.
    std::vector<std::filesystem::path> leftovers() const;

    TemporaryFolder folder;
    const std::filesystem::path backup;
    const std::filesystem::path temporary;

private:
    std::map<std::string, std::filesystem::path> stored_;
};

/// The same, for each kind of backup.
class EitherBackup : public BackupFixture, public testing::WithParamInterface<BackupKind> {
protected:
    BackupKind kind() const { return GetParam(); }
};

/// The texts of all messages of a database, in order.
std::vector<std::string> messageTexts(const std::filesystem::path& database);

/// Of a case that goes with each kind of backup.
template <typename Suite>
std::string nameOfCase(const testing::TestParamInfo<typename Suite::ParamType>& test) {
    const std::string kind = std::get<0>(test.param) == BackupKind::plain ? "plain_" : "encrypted_";
    return kind + std::get<1>(test.param).name;
}

/// The names of what lies directly in a folder, sorted.
std::vector<std::string> namesIn(const std::filesystem::path& folder);

/// Where below a folder a text stands: in the contents of a file or in a name.
std::vector<std::string> placesOf(const std::string& text, const std::filesystem::path& folder);

/// The permission bits of a file or folder.
std::filesystem::perms permissionsOf(const std::filesystem::path& file);

} // namespace quillbook::test
