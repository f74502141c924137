#include "tools/sample/SampleCaches.h"

#include "platform/FileError.h"
#include "platform/FileReader.h"
#include "platform/FileWriter.h"
#include "platform/FolderCreation.h"
#include "store/sqlite/SQLiteDatabase.h"
#include "tools/sample/MediaCatalog.h"
#include "tools/writing/DeterministicRandom.h"
#include "tools/writing/SampleError.h"

#include <algorithm>
#include <array>
#include <set>

#include <fmt/format.h>

namespace quillbook::sample {
namespace {

/// In the order in which attachments are given to them, so that a chat of few files has the most telling.
constexpr std::array<CacheForm, 7> forms = {CacheForm::plain,  CacheForm::twice, CacheForm::aByteShort,
                                            CacheForm::hidden, CacheForm::link,  CacheForm::plain,
                                            CacheForm::plain};

/// An attachment whose file lies in the library, with all its bytes.
struct LibraryFile {
    std::filesystem::path file;
    std::int64_t byteCount = 0;
    std::string mimeType;
};

/// Holds what the symbolic link points to; nobody looks for attachments there.
std::filesystem::path transfersFolder(const std::filesystem::path& home) {
    return home / "Library/Caches/com.apple.MobileSMS";
}

/// A byte less of one byte would be an empty file, which is no copy of anything.
bool isWhole(const LibraryFile& file) {
    std::error_code code;
    const auto size = std::filesystem::file_size(file.file, code);
    return !code && file.byteCount > 1 && size == static_cast<std::uintmax_t>(file.byteCount);
}

/// No two have one name, for else one could pass for the other.
std::vector<LibraryFile> wholeFiles(const std::filesystem::path& home, const std::filesystem::path& database,
                                    std::int64_t chat) {
    std::vector<LibraryFile> files;
    std::set<std::filesystem::path> names;
    const std::array<SQLiteValue, 1> bindings = {chat};
    SQLiteDatabase library(database);
    for (const SQLiteRow& row : library.query(
             "SELECT DISTINCT a.ROWID, a.filename, a.total_bytes, a.mime_type FROM chat_message_join c "
             "JOIN message_attachment_join m ON m.message_id = c.message_id "
             "JOIN attachment a ON a.ROWID = m.attachment_id "
             "WHERE c.chat_id = ? AND a.filename IS NOT NULL ORDER BY a.ROWID",
             bindings)) {
        LibraryFile file;
        file.file = home / row.text("filename").value().substr(std::string_view("~/").size());
        file.byteCount = row.integer("total_bytes").value();
        file.mimeType = row.text("mime_type").value();
        if (isWhole(file) && names.insert(file.file.filename()).second) files.push_back(std::move(file));
    }
    return files;
}

/// Films first, then pictures, then all else.
int rank(const LibraryFile& file) {
    if (file.mimeType.starts_with("video/")) return 0;
    return file.mimeType.starts_with("image/") ? 1 : 2;
}

/// One for each form, as far as there are files: a film and pictures from all over the chat.
std::vector<LibraryFile> chosenFiles(std::vector<LibraryFile> files) {
    std::stable_sort(files.begin(), files.end(), [](const LibraryFile& one, const LibraryFile& other) {
        return rank(one) < rank(other);
    });
    const auto mediaEnd =
        std::find_if(files.begin(), files.end(), [](const LibraryFile& file) { return rank(file) == 2; });
    const auto mediaCount = static_cast<std::size_t>(mediaEnd - files.begin());
    const std::size_t available = mediaCount >= forms.size() ? mediaCount : files.size();
    const std::size_t count = std::min(forms.size(), available);
    std::vector<LibraryFile> chosen;
    for (std::size_t index = 0; index < count; ++index)
        chosen.push_back(files[index * available / count]);
    return chosen;
}

void writeFile(const std::filesystem::path& file, std::string_view contents) {
    createFolders(file.parent_path());
    FileWriter writer(file);
    writer.write(contents);
    writer.close();
}

class CacheWriter {
public:
    explicit CacheWriter(const SampleOptions& options)
        : options_(options), folders_(sampleCacheFolders(options.home)), random_(options.seed, "caches") {}

    CachedAttachment take(const LibraryFile& file, CacheForm form) {
        CachedAttachment attachment;
        attachment.name = file.file.filename().string();
        attachment.byteCount = file.byteCount;
        attachment.form = form;
        write(attachment, readWholeFile(file.file));
        std::error_code code;
        if (!std::filesystem::remove(file.file, code) || code)
            throw FileError(FileError::Action::remove, file.file, code);
        return attachment;
    }

    /// Something of another application, so that no cache is a folder of attachments alone.
    void addOtherFiles() {
        const MediaFile picture = smallMedia(1, options_.seed);
        const std::filesystem::path file =
            folders_[0] / "com.apple.Notes/Assets" / random_.uuid() / picture.fileName;
        writeFile(file, std::string(picture.contents.begin(), picture.contents.end()));
    }

private:
    void write(CachedAttachment& attachment, const std::string& contents) {
        const std::string& name = attachment.name;
        switch (attachment.form) {
        case CacheForm::plain:
            return addFile(attachment, nextPlace() / name, contents);
        case CacheForm::twice:
            addFile(attachment, asset() / name, contents);
            return addFile(attachment, metaData() / name, contents);
        case CacheForm::aByteShort:
            return addFile(attachment, asset() / name, contents.substr(0, contents.size() - 1));
        case CacheForm::hidden:
            addFile(attachment, folders_[1] / "com.apple.MobileSMS/.Staging" / random_.uuid() / name,
                    contents);
            return addFile(attachment, asset() / ("." + name), contents);
        case CacheForm::link:
            return addLink(attachment, contents);
        }
    }

    void addFile(CachedAttachment& attachment, const std::filesystem::path& file, std::string_view contents) {
        writeFile(file, contents);
        attachment.files.push_back(file);
    }

    /// A relative one, so that the home folder can be moved.
    void addLink(CachedAttachment& attachment, std::string_view contents) {
        const std::filesystem::path target =
            transfersFolder(options_.home) / "Transfers" / random_.uuid() / attachment.name;
        writeFile(target, contents);
        const std::filesystem::path link = metaData() / attachment.name;
        createFolders(link.parent_path());
        std::error_code code;
        std::filesystem::create_symlink(target.lexically_relative(link.parent_path()), link, code);
        if (code) throw FileError(FileError::Action::create, link, code);
        attachment.files.push_back(link);
    }

    /// Each of the three in turn.
    std::filesystem::path nextPlace() {
        switch (plainCount_++ % 3) {
        case 0:
            return asset();
        case 1:
            return folders_[1] / "com.apple.MobileSMS/Downloads" / random_.uuid();
        default:
            return metaData();
        }
    }

    std::filesystem::path asset() {
        const std::string identifier = random_.uuid();
        return folders_[0] / "com.apple.MobileSMS/Assets" / identifier.substr(0, 2) / identifier;
    }
    std::filesystem::path metaData() { return folders_[2] / "Attachments" / random_.uuid(); }

    const SampleOptions& options_;
    std::vector<std::filesystem::path> folders_;
    DeterministicRandom random_;
    int plainCount_ = 0;
};

const char* wordsFor(CacheForm form) {
    switch (form) {
    case CacheForm::plain:
        return "recoverable";
    case CacheForm::twice:
        return "recoverable, there twice";
    case CacheForm::aByteShort:
        return "not recoverable, a byte short";
    case CacheForm::hidden:
        return "not recoverable, hidden";
    case CacheForm::link:
        return "not recoverable, a symbolic link";
    }
    return "";
}

} // namespace

std::vector<std::filesystem::path> sampleCacheFolders(const std::filesystem::path& home) {
    const std::filesystem::path library = home / "Library";
    return {library / "Caches/CloudKit", library / "Application Support/CloudKit",
            library / "Messages/CloudKitMetaData"};
}

void requireNoCaches(const std::filesystem::path& home) {
    std::vector<std::filesystem::path> folders = sampleCacheFolders(home);
    folders.push_back(transfersFolder(home));
    std::error_code code;
    for (const std::filesystem::path& folder : folders) {
        if (std::filesystem::exists(std::filesystem::symlink_status(folder, code)))
            throw SampleError(SampleError::Reason::cachesExist, folder.string());
    }
}

SampleCaches writeSampleCaches(const SampleOptions& options, const std::filesystem::path& database,
                               std::int64_t chat) {
    SampleCaches caches{sampleCacheFolders(options.home), {}};
    for (const std::filesystem::path& folder : caches.folders)
        createFolders(folder);
    CacheWriter writer(options);
    for (const LibraryFile& file : chosenFiles(wholeFiles(options.home, database, chat)))
        caches.attachments.push_back(writer.take(file, forms[caches.attachments.size()]));
    writer.addOtherFiles();
    return caches;
}

std::string describe(const SampleCaches& caches) {
    std::string words;
    for (const std::filesystem::path& folder : caches.folders)
        words += fmt::format("Cache: {}\n", folder.string());
    for (const CachedAttachment& attachment : caches.attachments) {
        words += fmt::format("In the caches: {} ({} bytes), {}\n", attachment.name, attachment.byteCount,
                             wordsFor(attachment.form));
        for (const std::filesystem::path& file : attachment.files)
            words += fmt::format("  {}\n", file.string());
    }
    return words;
}

} // namespace quillbook::sample
