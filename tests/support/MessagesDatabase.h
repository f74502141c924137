#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct sqlite3;

namespace quillbook::test {

/// A row of the message table; what is absent is stored as NULL.
struct MessageRow {
    std::optional<std::string> guid;
    std::optional<std::string> text;
    std::optional<std::vector<std::uint8_t>> attributedBody;
    std::optional<std::int64_t> handleID;
    std::optional<std::int64_t> date = 1'000'000;
    std::optional<std::int64_t> isFromMe = 0;
    std::optional<std::string> service = "iMessage";
    std::optional<std::string> subject;
    std::optional<std::string> associatedGUID;
    std::optional<std::int64_t> associatedType = 0;
    std::optional<std::string> threadOriginatorGUID;
    std::optional<std::int64_t> dateEdited;
    std::optional<std::int64_t> dateRetracted;
};

struct AttachmentRow {
    std::optional<std::string> guid;
    std::optional<std::string> filename;
    std::optional<std::string> transferName;
    std::optional<std::int64_t> totalBytes;
    std::optional<std::string> mimeType;
    std::optional<std::string> uti;
};

/// A small Messages database that a test writes row by row. Rows get the ids 1, 2, 3 … of their tables.
class MessagesDatabase {
public:
    enum class Age { current, withoutOptionalColumns };

    explicit MessagesDatabase(std::filesystem::path file, Age age = Age::current);

    const std::filesystem::path& file() const { return file_; }
    void run(const std::string& sql);

    std::int64_t addChat(std::optional<std::string> guid, std::optional<std::string> displayName,
                         std::optional<std::string> identifier,
                         std::optional<std::string> service = "iMessage");
    std::int64_t addHandle(std::optional<std::string> address);
    void join(std::int64_t chat, std::int64_t handle);
    std::int64_t addMessage(std::int64_t chat, const MessageRow& message);
    std::int64_t addAttachment(std::int64_t message, const AttachmentRow& attachment);

private:
    struct Closer {
        void operator()(sqlite3* handle) const;
    };
    std::filesystem::path file_;
    Age age_;
    std::unique_ptr<sqlite3, Closer> handle_;
};

} // namespace quillbook::test
