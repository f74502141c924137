#include "tools/backup/DeviceDatabase.h"

#include "platform/FileReader.h"
#include "platform/FileWriter.h"
#include "tools/backup/LogSalts.h"
#include "tools/writing/DeterministicRandom.h"
#include "tools/writing/SQLiteWriting.h"
#include "tools/writing/SampleError.h"

#include <memory>
#include <string>
#include <vector>

#include <sqlite3.h>

namespace quillbook::sample {
namespace {

constexpr const char* logSuffix = "-wal";

/// Devices write the path in either form; the folder is the same.
constexpr const char* movePathsToDevice =
    "UPDATE attachment SET filename = CASE ROWID % 2 WHEN 0 THEN '/var/mobile/' ELSE '~/' END || "
    "'Library/SMS/' || substr(filename, length('~/Library/Messages/') + 1) "
    "WHERE substr(filename, 1, length('~/Library/Messages/Attachments/')) = "
    "'~/Library/Messages/Attachments/'";

/// One message in twenty, but 200 at most and one at least.
constexpr const char* chooseNewest =
    "CREATE TEMP TABLE newestMessage AS SELECT ROWID AS id FROM main.message ORDER BY ROWID DESC "
    "LIMIT (SELECT max(1, min(200, count(*) / 20)) FROM main.message)";
constexpr const char* chooseTheirAttachments =
    "CREATE TEMP TABLE newestAttachment AS SELECT DISTINCT attachment_id AS id "
    "FROM main.message_attachment_join WHERE message_id IN (SELECT id FROM newestMessage) "
    "AND attachment_id NOT IN (SELECT attachment_id FROM main.message_attachment_join "
    "WHERE attachment_id IS NOT NULL AND message_id NOT IN (SELECT id FROM newestMessage))";

/// A table with rows that belong to the newest messages, and the condition that finds them.
struct NewestRows {
    const char* table;
    const char* condition;
};

constexpr NewestRows newestRows[] = {
    {"message", "ROWID IN (SELECT id FROM newestMessage)"},
    {"chat_message_join", "message_id IN (SELECT id FROM newestMessage)"},
    {"message_attachment_join", "message_id IN (SELECT id FROM newestMessage)"},
    {"attachment", "ROWID IN (SELECT id FROM newestAttachment)"},
};

/// Calls `visit` with every row's statement. Throws SampleError.
void forEachRow(WritableDatabase& database, const std::string& sql,
                const std::function<void(sqlite3_stmt*)>& visit) {
    sqlite3_stmt* raw = nullptr;
    int result = sqlite3_prepare_v2(database.handle(), sql.c_str(), -1, &raw, nullptr);
    const std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> statement(raw, sqlite3_finalize);
    if (result == SQLITE_OK) {
        while ((result = sqlite3_step(raw)) == SQLITE_ROW)
            visit(raw);
    }
    if (result != SQLITE_DONE)
        throw SampleError(SampleError::Reason::databaseFailed, sqlite3_errmsg(database.handle()));
}

std::string_view textAt(sqlite3_stmt* row, int column) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
    return {text == nullptr ? "" : text, static_cast<std::size_t>(sqlite3_column_bytes(row, column))};
}

/// Every column by its name in quotes, with the row's number in front where no column stands for it, so that
/// a row comes back under its own number.
std::string columnsOf(WritableDatabase& database, const std::string& table) {
    std::string columns;
    bool hasRowID = false;
    forEachRow(database, "SELECT name FROM pragma_table_info('" + table + "')", [&](sqlite3_stmt* row) {
        const std::string name(textAt(row, 0));
        hasRowID = hasRowID || sqlite3_stricmp(name.c_str(), "ROWID") == 0;
        columns += columns.empty() ? "\"" : ", \"";
        columns += name + "\"";
    });
    return hasRowID ? columns : "rowid, " + columns;
}

bool hasTable(WritableDatabase& database, const char* table) {
    bool isThere = false;
    forEachRow(database,
               "SELECT 1 FROM main.sqlite_master WHERE type = 'table' AND name = '" + std::string(table) +
                   "'",
               [&](sqlite3_stmt*) { isThere = true; });
    return isThere;
}

/// Takes the newest messages out of the database and keeps them in temporary tables.
class NewestMessages {
public:
    explicit NewestMessages(WritableDatabase& database) : database_(database) {
        // Overwrites what is deleted: the rows are to be gone from the file, not only from its tables.
        database_.execute("PRAGMA secure_delete = ON");
        database_.execute("BEGIN");
        database_.execute(chooseNewest);
        const bool hasAttachments = hasTable(database_, "message_attachment_join");
        database_.execute(hasAttachments ? chooseTheirAttachments
                                         : "CREATE TEMP TABLE newestAttachment (id)");
        for (const NewestRows& rows : newestRows) {
            if (hasTable(database_, rows.table)) keep(rows);
        }
        for (const Kept& kept : kept_)
            remove(kept);
        database_.execute("COMMIT");
    }

    void putBack() {
        database_.execute("BEGIN");
        for (const Kept& kept : kept_) {
            const std::string table = kept.rows.table;
            run("INSERT INTO main." + table + " (" + kept.columns + ") SELECT * FROM temp.kept_" + table +
                " ORDER BY rowid");
        }
        database_.execute("COMMIT");
    }

private:
    struct Kept {
        NewestRows rows;
        std::string columns;
    };

    void run(const std::string& sql) { database_.execute(sql.c_str()); }

    void keep(const NewestRows& rows) {
        const std::string table = rows.table;
        const std::string columns = columnsOf(database_, table);
        run("CREATE TEMP TABLE kept_" + table + " AS SELECT " + columns + " FROM main." + table + " WHERE " +
            rows.condition + " ORDER BY ROWID");
        kept_.push_back({rows, columns});
    }
    void remove(const Kept& kept) {
        run("DELETE FROM main." + std::string(kept.rows.table) + " WHERE " + kept.rows.condition);
    }

    WritableDatabase& database_;
    std::vector<Kept> kept_;
};

/// With its log, where the library was in use when it was left.
void copyDatabase(const std::filesystem::path& source, const std::filesystem::path& destination) {
    FileReader reader(source);
    FileWriter writer(destination);
    for (auto block = reader.next(); !block.empty(); block = reader.next())
        writer.write(block);
    writer.close();
}

/// Closing leaves the companions where they are.
void keepCompanions(WritableDatabase& database) {
    sqlite3_db_config(database.handle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
}

void divideMessages(const std::filesystem::path& file) {
    WritableDatabase database(file);
    keepCompanions(database);
    database.execute("PRAGMA journal_mode = DELETE; PRAGMA synchronous = OFF; PRAGMA cache_size = -65536;");
    if (hasTable(database, "attachment")) database.execute(movePathsToDevice);
    NewestMessages newest(database);
    database.execute("PRAGMA journal_mode = WAL; PRAGMA wal_autocheckpoint = 0;");
    newest.putBack();
}

/// SQLite makes the index of a log anew when it is first opened.
void indexLog(const std::filesystem::path& file) {
    WritableDatabase database(file);
    keepCompanions(database);
    database.execute("SELECT count(*) FROM sqlite_master");
}

} // namespace

DeviceDatabase::DeviceDatabase(const std::filesystem::path& chatDatabase,
                               const std::filesystem::path& workingFolder, std::uint64_t seed)
    : file_(workingFolder / "sms.db") {
    copyDatabase(chatDatabase, file_);
    std::filesystem::path chatLog = chatDatabase;
    chatLog += logSuffix;
    std::error_code code;
    if (std::filesystem::exists(chatLog, code)) copyDatabase(chatLog, companion(logSuffix));
    divideMessages(file_);
    if (std::filesystem::file_size(companion(logSuffix), code) > 0 && !code) {
        setLogSalts(companion(logSuffix), DeterministicRandom(seed, "log salts").next());
        indexLog(file_);
    }
}

std::filesystem::path DeviceDatabase::companion(std::string_view suffix) const {
    std::filesystem::path path = file_;
    path += suffix;
    return path;
}

void DeviceDatabase::forEachAttachment(
    const std::function<void(std::string_view, std::int64_t)>& visit) const {
    WritableDatabase database(file_);
    keepCompanions(database);
    if (!hasTable(database, "attachment")) return;
    constexpr std::string_view folder = "Library/SMS/Attachments/";
    forEachRow(database, "SELECT filename, total_bytes FROM attachment ORDER BY ROWID",
               [&](sqlite3_stmt* row) {
                   const std::string_view path = textAt(row, 0);
                   const auto start = path.find(folder);
                   if (start == std::string_view::npos) return;
                   visit(path.substr(start + folder.size()), sqlite3_column_int64(row, 1));
               });
}

} // namespace quillbook::sample
