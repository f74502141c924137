#include "tools/backup/BackupWriter.h"

#include "platform/FileReader.h"
#include "platform/FileWriter.h"
#include "platform/FolderCreation.h"
#include "tools/backup/BackupCiphers.h"
#include "tools/backup/BackupIndex.h"
#include "tools/backup/BackupKeys.h"
#include "tools/backup/BackupPropertyLists.h"
#include "tools/backup/FileRecordArchive.h"
#include "tools/writing/SampleError.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace quillbook::sample {
namespace {

constexpr std::uint32_t usualProtectionClass = 4;
constexpr std::uint32_t folderMode = 040755;
constexpr const char* indexSubject = "Manifest.db";

/// Gives a file's blocks one after the other, the last one empty.
using BlockSource = std::function<std::span<const std::uint8_t>()>;

std::filesystem::path newFolder(const std::filesystem::path& folder) {
    std::error_code code;
    if (std::filesystem::exists(std::filesystem::symlink_status(folder, code)))
        throw SampleError(SampleError::Reason::backupExists, folder.string());
    createFolders(folder);
    return folder;
}

/// A folder that goes with everything in it.
class PassingFolder {
public:
    explicit PassingFolder(const std::filesystem::path& folder) : path_(newFolder(folder)) {}
    ~PassingFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    PassingFolder(const PassingFolder&) = delete;
    PassingFolder& operator=(const PassingFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

std::filesystem::path workingFolderBeside(const std::filesystem::path& folder) {
    std::string name = ".";
    name += folder.filename().string();
    name += ".writing";
    return folder.parent_path() / name;
}

bool isStorable(std::string_view fileID) {
    constexpr std::string_view digits = "0123456789abcdefABCDEF";
    return fileID.size() > 2 && fileID.find_first_not_of(digits) == std::string_view::npos;
}

/// The blocks go to the file, encrypted where there is a key. Returns the plaintext's size.
std::int64_t writeBlocks(const std::filesystem::path& file, const BlockSource& next,
                         const std::optional<Data>& key, StreamEncryptor::Padding padding) {
    std::optional<StreamEncryptor> cipher;
    if (key) cipher.emplace(*key, padding);
    FileWriter output(file);
    std::int64_t size = 0;
    for (auto block = next(); !block.empty(); block = next()) {
        size += static_cast<std::int64_t>(block.size());
        output.write(cipher ? cipher->update(block) : block);
    }
    if (cipher) output.write(cipher->finish());
    output.close();
    return size;
}

std::int64_t countBlocks(const BlockSource& next) {
    std::int64_t size = 0;
    for (auto block = next(); !block.empty(); block = next())
        size += static_cast<std::int64_t>(block.size());
    return size;
}

void writeFile(const std::filesystem::path& file, const Data& contents) {
    FileWriter output(file);
    output.write(contents);
    output.close();
}

std::string identifierOf(std::string_view domain, std::string_view relativePath) {
    std::string name(domain);
    name += '-';
    name += relativePath;
    return sha1Hex(name);
}

} // namespace

struct BackupWriter::State {
    explicit State(BackupDescription given)
        : description(std::move(given)), working(workingFolderBeside(description.folder)),
          folder(newFolder(description.folder)) {
        if (description.encryption) keys.emplace(*description.encryption, description.seed);
        index = std::make_unique<BackupIndex>(working.path() / indexSubject);
    }

    BackupDescription description;
    PassingFolder working;
    std::filesystem::path folder;
    std::optional<BackupKeys> keys;
    std::unique_ptr<BackupIndex> index;
    std::uint64_t fileCount = 0;

    StoredFileRecord record(std::string_view relativePath) const;
    void addFolders(std::string_view domain, std::string_view relativePath);
    std::filesystem::path add(std::string_view domain, std::string_view relativePath, const BlockSource& next,
                              const BackupFileOptions& options);
    void moveIndex(const std::optional<Data>& key);
};

StoredFileRecord BackupWriter::State::record(std::string_view relativePath) const {
    StoredFileRecord values;
    values.relativePath = relativePath;
    values.lastModified = std::max<std::int64_t>(
        0, static_cast<std::int64_t>(std::floor(description.lastBackupDate.unixSeconds())));
    values.inode = fileCount;
    return values;
}

void BackupWriter::State::addFolders(std::string_view domain, std::string_view relativePath) {
    StoredFileRecord values = record("");
    values.mode = folderMode;
    values.protectionClass = 0;
    values.inode = 0;
    index->addFolder(identifierOf(domain, ""), domain, "", fileRecordArchive(values));
    for (auto slash = relativePath.find('/'); slash != std::string_view::npos;
         slash = relativePath.find('/', slash + 1)) {
        values.relativePath = relativePath.substr(0, slash);
        index->addFolder(identifierOf(domain, values.relativePath), domain, values.relativePath,
                         fileRecordArchive(values));
    }
}

std::filesystem::path BackupWriter::State::add(std::string_view domain, std::string_view relativePath,
                                               const BlockSource& next, const BackupFileOptions& options) {
    ++fileCount;
    addFolders(domain, relativePath);
    const std::string fileID = options.fileID.value_or(identifierOf(domain, relativePath));
    std::optional<Data> key;
    if (keys && options.hasKey) key = keys->keyFor(fileID);
    std::filesystem::path stored;
    StoredFileRecord values = record(relativePath);
    if (options.hasStoredFile && isStorable(fileID)) {
        stored = folder / fileID.substr(0, 2) / fileID;
        createFolders(stored.parent_path());
        values.size = writeBlocks(stored, next, key, StreamEncryptor::Padding::wholeBlocks);
    } else {
        values.size = countBlocks(next);
    }
    values.size = options.claimedSize.value_or(values.size);
    values.protectionClass = options.protectionClass.value_or(usualProtectionClass);
    if (key) values.encryptionKey = keys->protectedKey(values.protectionClass, *key);
    index->addFile(fileID, domain, relativePath,
                   options.fileBlob ? *options.fileBlob : fileRecordArchive(values));
    return stored;
}

/// A database fills whole blocks of the cipher, so that its ciphertext has its own size.
void BackupWriter::State::moveIndex(const std::optional<Data>& key) {
    FileReader reader(working.path() / indexSubject);
    writeBlocks(
        folder / indexSubject, [&] { return reader.next(); }, key, StreamEncryptor::Padding::none);
}

BackupWriter::BackupWriter(BackupDescription description)
    : state_(std::make_unique<State>(std::move(description))) {}

BackupWriter::~BackupWriter() = default;

std::filesystem::path BackupWriter::addFile(std::string_view domain, std::string_view relativePath,
                                            const std::filesystem::path& contents,
                                            const BackupFileOptions& options) {
    FileReader reader(contents);
    return state_->add(
        domain, relativePath, [&] { return reader.next(); }, options);
}

std::filesystem::path BackupWriter::addBytes(std::string_view domain, std::string_view relativePath,
                                             std::string_view contents, const BackupFileOptions& options) {
    std::span<const std::uint8_t> rest(reinterpret_cast<const std::uint8_t*>(contents.data()),
                                       contents.size());
    const BlockSource next = [&] {
        const auto block = rest.first(std::min(rest.size(), fileBlockSize));
        rest = rest.subspan(block.size());
        return block;
    };
    return state_->add(domain, relativePath, next, options);
}

void BackupWriter::finish() {
    const BackupDescription& description = state_->description;
    state_->index->finish(description.manifestJournal);
    state_->index.reset();
    std::optional<Data> key;
    std::optional<ManifestSecrets> secrets;
    if (state_->keys) {
        key = state_->keys->keyFor(indexSubject);
        secrets = {state_->keys->keybag(), state_->keys->protectedKey(usualProtectionClass, *key)};
    }
    state_->moveIndex(key);
    writeFile(state_->folder / "Info.plist", infoPropertyList(description));
    writeFile(state_->folder / "Status.plist", statusPropertyList(description));
    writeFile(state_->folder / "Manifest.plist", manifestPropertyList(description, secrets));
}

const std::filesystem::path& BackupWriter::workingFolder() const {
    return state_->working.path();
}

std::uint64_t BackupWriter::seed() const {
    return state_->description.seed;
}

} // namespace quillbook::sample
