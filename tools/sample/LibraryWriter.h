#pragma once

#include "tools/sample/LibraryRows.h"
#include "tools/writing/DeterministicRandom.h"

#include <cstdint>
#include <filesystem>
#include <memory>

namespace quillbook::sample {

/// Writes one new Messages database, all of it in one transaction. Row by row; nothing is held in memory.
/// Everything throws SampleError.
class LibraryWriter {
public:
    LibraryWriter(const std::filesystem::path& file, std::uint64_t seed);
    ~LibraryWriter();
    LibraryWriter(const LibraryWriter&) = delete;
    LibraryWriter& operator=(const LibraryWriter&) = delete;

    std::int64_t addHandle(const HandleRow& handle);
    std::int64_t addChat(const ChatRow& chat);
    void setLastMessage(std::int64_t chat, const ChatRow& row);
    /// With its attachments and joins.
    void addMessage(std::int64_t chat, const MessageRow& message);
    /// Notes a message that once stood in the library.
    void addDeletedMessage(const std::string& guid);
    /// Makes the indexes and ends the transaction; only the one file remains.
    void finish();

private:
    struct Statements;

    void insertMessage(const MessageRow& message);
    void insertAttachment(const MessageRow& message, const AttachmentRow& attachment);

    std::unique_ptr<Statements> statements_;
    DeterministicRandom random_;
    std::string accountGUID_;
};

} // namespace quillbook::sample
