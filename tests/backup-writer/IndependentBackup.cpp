#include "tests/backup-writer/IndependentBackup.h"

#include "tests/support/TemporaryFolder.h"

#include <fstream>
#include <stdexcept>

#include <openssl/evp.h>
#include <plist/plist.h>
#include <sqlite3.h>

namespace quillbook::sample::test {
namespace {

using quillbook::test::readFile;

[[noreturn]] void fail(const std::string& what) {
    throw std::runtime_error(what);
}

/// Nothing where the wrap's integrity value does not come out.
std::optional<Data> keyUnwrap(const Data& key, const Data& wrapped) {
    const std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)> context(EVP_CIPHER_CTX_new(),
                                                                                  EVP_CIPHER_CTX_free);
    EVP_CIPHER_CTX_set_flags(context.get(), EVP_CIPHER_CTX_FLAG_WRAP_ALLOW);
    Data unwrapped(wrapped.size() + 16);
    int length = 0;
    if (EVP_DecryptInit_ex(context.get(), EVP_aes_256_wrap(), nullptr, key.data(), nullptr) != 1 ||
        EVP_DecryptUpdate(context.get(), unwrapped.data(), &length, wrapped.data(),
                          static_cast<int>(wrapped.size())) != 1) {
        return std::nullopt;
    }
    unwrapped.resize(static_cast<std::size_t>(length));
    return unwrapped;
}

std::string decrypted(const std::string& ciphertext, const Data& key) {
    const std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)> context(EVP_CIPHER_CTX_new(),
                                                                                  EVP_CIPHER_CTX_free);
    const Data zeros(16);
    std::string plaintext(ciphertext.size() + 16, '\0');
    int length = 0;
    EVP_DecryptInit_ex(context.get(), EVP_aes_256_cbc(), nullptr, key.data(), zeros.data());
    EVP_CIPHER_CTX_set_padding(context.get(), 0);
    EVP_DecryptUpdate(context.get(), reinterpret_cast<unsigned char*>(plaintext.data()), &length,
                      reinterpret_cast<const unsigned char*>(ciphertext.data()),
                      static_cast<int>(ciphertext.size()));
    if (static_cast<std::size_t>(length) != ciphertext.size()) fail("no whole blocks");
    plaintext.resize(ciphertext.size());
    return plaintext;
}

Data derived(const Data& password, const Data& salt, std::uint64_t rounds, const EVP_MD* digest) {
    Data key(32);
    PKCS5_PBKDF2_HMAC(password.empty() ? "" : reinterpret_cast<const char*>(password.data()),
                      static_cast<int>(password.size()), salt.data(), static_cast<int>(salt.size()),
                      static_cast<int>(rounds), digest, 32, key.data());
    return key;
}

std::optional<Data> dataOf(plist_t node) {
    if (node == nullptr || plist_get_node_type(node) != PLIST_DATA) return std::nullopt;
    std::uint64_t length = 0;
    const char* bytes = plist_get_data_ptr(node, &length);
    return Data(bytes, bytes + length);
}

std::int64_t numberOf(plist_t record, const char* key) {
    std::uint64_t value = 0;
    plist_get_uint_val(plist_dict_get_item(record, key), &value);
    return static_cast<std::int64_t>(value);
}

std::string textOf(plist_t node) {
    std::uint64_t length = 0;
    const char* text = plist_get_string_ptr(node, &length);
    return {text, static_cast<std::size_t>(length)};
}

/// A keyed archive's record, whose references are followed one step.
struct Archive {
    std::unique_ptr<void, decltype(&plist_free)> root;
    plist_t objects;
    plist_t record;

    explicit Archive(const std::string& blob) : root(nullptr, plist_free) {
        plist_t node = nullptr;
        plist_from_bin(blob.data(), static_cast<std::uint32_t>(blob.size()), &node);
        if (node == nullptr) fail("no binary property list");
        root.reset(node);
        objects = plist_dict_get_item(node, "$objects");
        record = referred(plist_dict_get_item(plist_dict_get_item(node, "$top"), "root"));
    }
    plist_t referred(plist_t reference) const {
        if (reference == nullptr) return nullptr;
        std::uint64_t number = 0;
        plist_get_uid_val(reference, &number);
        return plist_array_get_item(objects, static_cast<std::uint32_t>(number));
    }
};

std::string columnText(sqlite3_stmt* row, int column) {
    const auto* bytes = static_cast<const char*>(sqlite3_column_blob(row, column));
    return {bytes == nullptr ? "" : bytes, static_cast<std::size_t>(sqlite3_column_bytes(row, column))};
}

IndexRow rowOf(sqlite3_stmt* statement) {
    IndexRow row;
    row.fileID = columnText(statement, 0);
    row.domain = columnText(statement, 1);
    row.relativePath = columnText(statement, 2);
    row.flags = sqlite3_column_int64(statement, 3);
    const std::string blob = columnText(statement, 4);
    if (blob.compare(0, 8, "bplist00") != 0) return row;
    const Archive archive(blob);
    row.size = numberOf(archive.record, "Size");
    row.protectionClass = numberOf(archive.record, "ProtectionClass");
    row.recordPath = textOf(archive.referred(plist_dict_get_item(archive.record, "RelativePath")));
    if (plist_t key = archive.referred(plist_dict_get_item(archive.record, "EncryptionKey")))
        row.key = dataOf(plist_dict_get_item(key, "NS.data"));
    return row;
}

} // namespace

std::uint64_t bigEndianNumber(const Data& bytes) {
    std::uint64_t number = 0;
    for (const std::uint8_t byte : bytes)
        number = number << 8U | byte;
    return number;
}

KeybagRecords readKeybag(const Data& keybag) {
    KeybagRecords records;
    std::map<std::string, Data>* current = nullptr;
    Data identifier;
    for (std::size_t position = 0; position + 8 <= keybag.size();) {
        const auto start = keybag.begin() + static_cast<std::ptrdiff_t>(position);
        const std::string tag(start, start + 4);
        const auto length = static_cast<std::ptrdiff_t>(bigEndianNumber({start + 4, start + 8}));
        if (length > keybag.end() - start - 8) fail("a record of the keybag overruns it");
        const Data value(start + 8, start + 8 + length);
        position += 8 + static_cast<std::size_t>(length);
        if (tag == "CLAS") {
            current = &records.classes[static_cast<std::uint32_t>(bigEndianNumber(value))];
            (*current)["UUID"] = identifier;
        } else if (tag == "UUID" && records.header.count("UUID") != 0) {
            identifier = value;
        } else if (current != nullptr) {
            (*current)[tag] = value;
        } else {
            records.header[tag] = value;
            records.headerTags.push_back(tag);
        }
    }
    return records;
}

void PropertyListFile::Deleter::operator()(void* node) const {
    plist_free(node);
}

PropertyListFile::PropertyListFile(const std::filesystem::path& file) {
    const std::string contents = readFile(file);
    isBinary_ = contents.compare(0, 8, "bplist00") == 0;
    plist_t node = nullptr;
    plist_from_memory(contents.data(), static_cast<std::uint32_t>(contents.size()), &node);
    if (node == nullptr) fail("no property list");
    root_.reset(node);
}

std::optional<std::string> PropertyListFile::text(const char* key) const {
    plist_t node = plist_dict_get_item(root_.get(), key);
    if (node == nullptr || plist_get_node_type(node) != PLIST_STRING) return std::nullopt;
    return textOf(node);
}

std::optional<bool> PropertyListFile::truth(const char* key) const {
    plist_t node = plist_dict_get_item(root_.get(), key);
    if (node == nullptr || plist_get_node_type(node) != PLIST_BOOLEAN) return std::nullopt;
    std::uint8_t value = 0;
    plist_get_bool_val(node, &value);
    return value != 0;
}

std::optional<Data> PropertyListFile::data(const char* key) const {
    return dataOf(plist_dict_get_item(root_.get(), key));
}

std::optional<double> PropertyListFile::date(const char* key) const {
    plist_t node = plist_dict_get_item(root_.get(), key);
    if (node == nullptr || plist_get_node_type(node) != PLIST_DATE) return std::nullopt;
    std::int32_t seconds = 0;
    std::int32_t millionths = 0;
    plist_get_date_val(node, &seconds, &millionths);
    return seconds + millionths / 1e6;
}

IndependentBackup::IndependentBackup(std::filesystem::path folder, std::optional<std::string> password)
    : folder_(std::move(folder)), index_(folder_ / "Manifest.db") {
    const PropertyListFile manifest(folder_ / "Manifest.plist");
    if (!password) return;
    openKeybag(manifest.data("BackupKeyBag").value(), *password);
    const std::string plaintext =
        decrypted(readFile(index_), unprotected(manifest.data("ManifestKey").value()));
    index_ = folder_;
    index_ += ".index";
    std::ofstream(index_, std::ios::binary) << plaintext;
}

void IndependentBackup::openKeybag(const Data& keybag, const std::string& password) {
    const KeybagRecords records = readKeybag(keybag);
    Data material(password.begin(), password.end());
    if (records.header.count("DPSL") != 0 && records.header.count("DPIC") != 0) {
        material = derived(material, records.header.at("DPSL"), bigEndianNumber(records.header.at("DPIC")),
                           EVP_sha256());
    }
    material =
        derived(material, records.header.at("SALT"), bigEndianNumber(records.header.at("ITER")), EVP_sha1());
    for (const auto& [number, fields] : records.classes) {
        if ((bigEndianNumber(fields.at("WRAP")) & 2U) == 0) continue;
        const auto key = keyUnwrap(material, fields.at("WPKY"));
        if (!key) fail("the password does not open the keybag");
        classKeys_[number] = *key;
    }
}

Data IndependentBackup::unprotected(const Data& blob) const {
    const std::uint32_t number = blob[0] | blob[1] << 8U | blob[2] << 16U | std::uint32_t{blob[3]} << 24U;
    const auto key = keyUnwrap(classKeys_.at(number), Data(blob.begin() + 4, blob.end()));
    if (!key) fail("the key of a file does not unwrap");
    return *key;
}

std::vector<IndexRow> IndependentBackup::rows() const {
    std::string address = "file:" + index_.string() + "?immutable=1";
    sqlite3* database = nullptr;
    const int opened =
        sqlite3_open_v2(address.c_str(), &database, SQLITE_OPEN_READONLY | SQLITE_OPEN_URI, nullptr);
    const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> connection(database, sqlite3_close);
    sqlite3_stmt* raw = nullptr;
    if (opened != SQLITE_OK ||
        sqlite3_prepare_v2(database, "SELECT fileID, domain, relativePath, flags, file FROM Files", -1, &raw,
                           nullptr) != SQLITE_OK) {
        fail(sqlite3_errmsg(database));
    }
    const std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> statement(raw, sqlite3_finalize);
    std::vector<IndexRow> rows;
    while (sqlite3_step(raw) == SQLITE_ROW)
        rows.push_back(rowOf(raw));
    return rows;
}

IndexRow IndependentBackup::row(const std::string& domain, const std::string& relativePath) const {
    for (const IndexRow& row : rows()) {
        if (row.domain == domain && row.relativePath == relativePath) return row;
    }
    fail("no row for " + relativePath);
}

std::filesystem::path IndependentBackup::storedFile(const IndexRow& row) const {
    return folder_ / row.fileID.substr(0, 2) / row.fileID;
}

std::string IndependentBackup::contents(const IndexRow& row) const {
    std::string bytes = readFile(storedFile(row));
    if (row.key) bytes = decrypted(bytes, unprotected(*row.key));
    if (row.size < 0 || static_cast<std::size_t>(row.size) > bytes.size()) fail("the file is too short");
    return bytes.substr(0, static_cast<std::size_t>(row.size));
}

} // namespace quillbook::sample::test
