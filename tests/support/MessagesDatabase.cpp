#include "tests/support/MessagesDatabase.h"

#include <stdexcept>
#include <variant>

#include <sqlite3.h>

namespace quillbook::test {
namespace {

using Cell = std::variant<std::optional<std::int64_t>, std::optional<std::string>,
                          std::optional<std::vector<std::uint8_t>>>;

struct Binder {
    sqlite3_stmt* statement;
    int parameter;

    int operator()(const std::optional<std::int64_t>& value) const {
        return value ? sqlite3_bind_int64(statement, parameter, *value)
                     : sqlite3_bind_null(statement, parameter);
    }
    int operator()(const std::optional<std::string>& value) const {
        if (!value) return sqlite3_bind_null(statement, parameter);
        return sqlite3_bind_text(statement, parameter, value->data(), static_cast<int>(value->size()),
                                 nullptr);
    }
    int operator()(const std::optional<std::vector<std::uint8_t>>& value) const {
        if (!value) return sqlite3_bind_null(statement, parameter);
        const void* start = value->empty() ? static_cast<const void*>("") : value->data();
        return sqlite3_bind_blob(statement, parameter, start, static_cast<int>(value->size()), nullptr);
    }
};

std::int64_t insert(sqlite3* handle, const std::string& sql, const std::vector<Cell>& cells) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(handle, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) {
        throw std::runtime_error(sqlite3_errmsg(handle));
    }
    int parameter = 0;
    for (const Cell& cell : cells)
        std::visit(Binder{statement, ++parameter}, cell);
    const int step = sqlite3_step(statement);
    sqlite3_finalize(statement);
    if (step != SQLITE_DONE) throw std::runtime_error(sqlite3_errmsg(handle));
    return sqlite3_last_insert_rowid(handle);
}

constexpr const char* schema = R"(
CREATE TABLE chat (ROWID INTEGER PRIMARY KEY AUTOINCREMENT, guid TEXT, display_name TEXT, chat_identifier TEXT, service_name TEXT);
CREATE TABLE handle (ROWID INTEGER PRIMARY KEY AUTOINCREMENT, id TEXT);
CREATE TABLE chat_handle_join (chat_id INTEGER, handle_id INTEGER);
CREATE TABLE chat_message_join (chat_id INTEGER, message_id INTEGER, PRIMARY KEY (chat_id, message_id));
CREATE TABLE message_attachment_join (message_id INTEGER, attachment_id INTEGER);
CREATE TABLE attachment (ROWID INTEGER PRIMARY KEY AUTOINCREMENT, guid TEXT, filename TEXT, transfer_name TEXT, total_bytes INTEGER, mime_type TEXT, uti TEXT);
CREATE TABLE message (ROWID INTEGER PRIMARY KEY AUTOINCREMENT, guid TEXT, text TEXT, attributedBody BLOB, handle_id INTEGER, date INTEGER, is_from_me INTEGER, service TEXT, subject TEXT, associated_message_guid TEXT, associated_message_type INTEGER);
)";

constexpr const char* optionalColumns = R"(
ALTER TABLE message ADD COLUMN thread_originator_guid TEXT;
ALTER TABLE message ADD COLUMN date_edited INTEGER;
ALTER TABLE message ADD COLUMN date_retracted INTEGER;
)";

} // namespace

void MessagesDatabase::Closer::operator()(sqlite3* handle) const {
    sqlite3_close(handle);
}

MessagesDatabase::MessagesDatabase(std::filesystem::path file, Age age) : file_(std::move(file)), age_(age) {
    std::filesystem::create_directories(file_.parent_path());
    sqlite3* handle = nullptr;
    const int result = sqlite3_open(file_.c_str(), &handle);
    handle_.reset(handle);
    if (result != SQLITE_OK) throw std::runtime_error("could not make " + file_.string());
    run("PRAGMA synchronous = OFF");
    run(schema);
    if (age == Age::current) run(optionalColumns);
}

void MessagesDatabase::run(const std::string& sql) {
    if (sqlite3_exec(handle_.get(), sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
        throw std::runtime_error(sqlite3_errmsg(handle_.get()));
    }
}

std::int64_t MessagesDatabase::addChat(std::optional<std::string> guid,
                                       std::optional<std::string> displayName,
                                       std::optional<std::string> identifier,
                                       std::optional<std::string> service) {
    return insert(handle_.get(),
                  "INSERT INTO chat (guid, display_name, chat_identifier, service_name) VALUES (?, ?, ?, ?)",
                  {guid, displayName, identifier, service});
}

std::int64_t MessagesDatabase::addHandle(std::optional<std::string> address) {
    return insert(handle_.get(), "INSERT INTO handle (id) VALUES (?)", {address});
}

void MessagesDatabase::join(std::int64_t chat, std::int64_t handle) {
    insert(handle_.get(), "INSERT INTO chat_handle_join VALUES (?, ?)",
           {std::optional<std::int64_t>(chat), std::optional<std::int64_t>(handle)});
}

std::int64_t MessagesDatabase::addMessage(std::int64_t chat, const MessageRow& message) {
    std::string columns = "guid, text, attributedBody, handle_id, date, is_from_me, service, subject, "
                          "associated_message_guid, associated_message_type";
    std::string marks = "?, ?, ?, ?, ?, ?, ?, ?, ?, ?";
    std::vector<Cell> cells = {message.guid,          message.text,    message.attributedBody,
                               message.handleID,      message.date,    message.isFromMe,
                               message.service,       message.subject, message.associatedGUID,
                               message.associatedType};
    if (age_ == Age::current) {
        columns += ", thread_originator_guid, date_edited, date_retracted";
        marks += ", ?, ?, ?";
        cells.insert(cells.end(), {message.threadOriginatorGUID, message.dateEdited, message.dateRetracted});
    }
    const std::int64_t rowID =
        insert(handle_.get(), "INSERT INTO message (" + columns + ") VALUES (" + marks + ")", cells);
    insert(handle_.get(), "INSERT INTO chat_message_join VALUES (?, ?)",
           {std::optional<std::int64_t>(chat), std::optional<std::int64_t>(rowID)});
    return rowID;
}

std::int64_t MessagesDatabase::addAttachment(std::int64_t message, const AttachmentRow& attachment) {
    const std::int64_t rowID = insert(handle_.get(),
                                      "INSERT INTO attachment (guid, filename, transfer_name, total_bytes, "
                                      "mime_type, uti) VALUES (?, ?, ?, ?, ?, ?)",
                                      {attachment.guid, attachment.filename, attachment.transferName,
                                       attachment.totalBytes, attachment.mimeType, attachment.uti});
    insert(handle_.get(), "INSERT INTO message_attachment_join VALUES (?, ?)",
           {std::optional<std::int64_t>(message), std::optional<std::int64_t>(rowID)});
    return rowID;
}

} // namespace quillbook::test
