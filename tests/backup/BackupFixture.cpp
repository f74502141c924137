#include "tests/backup/BackupFixture.h"

#include "core/records/DescribedError.h"
#include "store/sqlite/SQLiteDatabase.h"
#include "tests/support/MessagesDatabase.h"

#include <algorithm>
#include <stdexcept>

#include <sqlite3.h>

namespace quillbook::test {
namespace {

namespace fs = std::filesystem;

void runSQL(sqlite3* handle, const std::string& sql) {
    if (sqlite3_exec(handle, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
        throw std::runtime_error(sqlite3_errmsg(handle));
}

/// A database whose second message stands only in its log, as files "sms.db" and "sms.db-wal".
void writeMessages(const fs::path& folder) {
    const fs::path live = folder / "live/chat.db";
    fs::create_directories(live.parent_path());
    {
        MessagesDatabase database(live);
        const auto chat = database.addChat("chat", "Lake house", "chat1");
        const auto message = database.addMessage(chat, {.guid = "m1", .text = knownPlaintext});
        database.addAttachment(message, {.guid = "a1", .filename = "~/Library/SMS/Attachments/00/a.txt"});
    }
    sqlite3* handle = nullptr;
    sqlite3_open(live.c_str(), &handle);
    runSQL(handle, "PRAGMA journal_mode=WAL; PRAGMA wal_autocheckpoint=0");
    runSQL(handle, "INSERT INTO message (guid, text, date) VALUES ('m2', 'in the log', 2000000);"
                   "INSERT INTO chat_message_join (chat_id, message_id) VALUES (1, 2)");
    fs::copy_file(live, folder / "sms.db");
    fs::copy_file(live.native() + "-wal", folder / "sms.db-wal");
    fs::copy_file(live.native() + "-shm", folder / "sms.db-shm");
    sqlite3_close(handle);
    fs::remove_all(live.parent_path());
}

} // namespace

BackupFixture::BackupFixture() : backup(folder / "backup"), temporary(folder / "tmp") {
    fs::create_directory(temporary);
}

sample::BackupDescription BackupFixture::description(BackupKind kind) const {
    sample::BackupDescription description{.folder = backup};
    if (kind == BackupKind::encrypted)
        description.encryption = sample::BackupEncryption{.password = backupPassword, .rounds = 10};
    return description;
}

void BackupFixture::addMessages(sample::BackupWriter& writer) {
    writeMessages(folder / "messages");
    for (const std::string name : {"sms.db", "sms.db-wal", "sms.db-shm"}) {
        stored_[name] =
            writer.addFile("HomeDomain", "Library/SMS/" + name, folder / "messages" / fs::path(name));
    }
    for (const std::string name : {"a.txt", "b.txt"}) {
        stored_[name] = writer.addBytes("MediaDomain", "Library/SMS/Attachments/00/" + name,
                                        name + ": " + knownPlaintext);
    }
    fs::remove_all(folder / "messages");
}

void BackupFixture::write(BackupKind kind) {
    write(kind, [this](sample::BackupWriter& writer) { addMessages(writer); });
}

void BackupFixture::write(BackupKind kind, const std::function<void(sample::BackupWriter&)>& fill) {
    sample::BackupWriter writer(description(kind));
    fill(writer);
    writer.finish();
}

std::shared_ptr<PreparedBackup> BackupFixture::open(BackupKind kind, const std::stop_token& stop) const {
    const bool isEncrypted = kind == BackupKind::encrypted;
    const auto password = isEncrypted ? std::optional<std::string>(backupPassword) : std::nullopt;
    return PreparedBackup::open(backup, isEncrypted, password, stop, temporary);
}

std::string BackupFixture::failureOfOpening(BackupKind kind,
                                            const std::optional<std::string>& password) const {
    try {
        PreparedBackup::open(backup, kind == BackupKind::encrypted, password, {}, temporary);
    } catch (const std::exception& error) {
        return describe(error);
    }
    return "";
}

std::vector<fs::path> BackupFixture::leftovers() const {
    return {fs::directory_iterator(temporary), fs::directory_iterator()};
}

std::vector<std::string> messageTexts(const fs::path& database) {
    std::vector<std::string> texts;
    SQLiteDatabase connection(database);
    for (const SQLiteRow& row : connection.query("SELECT text FROM message ORDER BY ROWID"))
        texts.emplace_back(row.text("text").value_or(""));
    return texts;
}

std::vector<std::string> namesIn(const fs::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::string> placesOf(const std::string& text, const fs::path& folder) {
    std::vector<std::string> places;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        const bool isFound = entry.path().filename().string().find(text) != std::string::npos ||
                             (entry.is_regular_file() && !entry.is_symlink() &&
                              readFile(entry.path()).find(text) != std::string::npos);
        if (isFound) places.push_back(entry.path().string());
    }
    return places;
}

fs::perms permissionsOf(const fs::path& file) {
    return fs::symlink_status(file).permissions();
}

} // namespace quillbook::test
