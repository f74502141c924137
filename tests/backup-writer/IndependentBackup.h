#pragma once

#include "core/records/ConversationSummary.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quillbook::sample::test {

/// A row of the index with what its archive says.
struct IndexRow {
    std::string fileID;
    std::string domain;
    std::string relativePath;
    std::int64_t flags = 0;
    std::int64_t size = 0;
    std::int64_t protectionClass = 0;
    std::string recordPath;
    std::optional<Data> key; ///< As it is stored.
};

/// The records of a keybag in their order, class records under the number of their class.
struct KeybagRecords {
    std::vector<std::string> headerTags;
    std::map<std::string, Data> header;
    std::map<std::uint32_t, std::map<std::string, Data>> classes;
};

KeybagRecords readKeybag(const Data& keybag);
std::uint64_t bigEndianNumber(const Data& bytes);

/// A number, text, date or data of a property list by its key; nothing where it is missing. Throws
/// std::runtime_error for a file that is no property list.
class PropertyListFile {
public:
    explicit PropertyListFile(const std::filesystem::path& file);

    bool isBinary() const { return isBinary_; }
    std::optional<std::string> text(const char* key) const;
    std::optional<bool> truth(const char* key) const;
    std::optional<Data> data(const char* key) const;
    std::optional<double> date(const char* key) const; ///< Seconds since 2001.

private:
    struct Deleter {
        void operator()(void* node) const;
    };
    bool isBinary_ = false;
    std::unique_ptr<void, Deleter> root_;
};

/// Reads a backup by libcrypto, SQLite and libplist alone. Throws std::runtime_error, also for a password
/// that opens no class key.
class IndependentBackup {
public:
    explicit IndependentBackup(std::filesystem::path folder, std::optional<std::string> password = {});

    const std::filesystem::path& folder() const { return folder_; }
    /// Readable: that of an encrypted backup is decrypted to a file beside the backup's folder.
    const std::filesystem::path& index() const { return index_; }
    const std::map<std::uint32_t, Data>& classKeys() const { return classKeys_; }

    std::vector<IndexRow> rows() const;
    /// Throws std::runtime_error where there is none.
    IndexRow row(const std::string& domain, const std::string& relativePath) const;
    std::filesystem::path storedFile(const IndexRow& row) const;
    /// The plaintext, cut to the size that the record claims.
    std::string contents(const IndexRow& row) const;
    std::string contents(const std::string& domain, const std::string& relativePath) const {
        return contents(row(domain, relativePath));
    }

private:
    void openKeybag(const Data& keybag, const std::string& password);
    Data unprotected(const Data& blob) const;

    std::filesystem::path folder_;
    std::filesystem::path index_;
    std::map<std::uint32_t, Data> classKeys_;
};

} // namespace quillbook::sample::test
