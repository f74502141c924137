#include "tools/sample/AttachmentShelf.h"

#include "platform/FileError.h"
#include "platform/FileWriter.h"
#include "tools/sample/MediaCatalog.h"
#include "tools/sample/SampleOptions.h"

#include <cassert>

namespace quillbook::sample {
namespace {

void createFolders(const std::filesystem::path& folder) {
    std::error_code code;
    std::filesystem::create_directories(folder, code);
    if (code) throw FileError(FileError::Action::createFolder, folder, code);
}

/// "Attachments/ab/11/GUID": two hexadecimal digits, and the lower of them in decimal.
std::string folderFor(DeterministicRandom& random) {
    constexpr std::string_view digits = "0123456789abcdef";
    const std::uint64_t high = random.below(16);
    const std::uint64_t low = random.below(16);
    std::string folder = "Attachments/";
    folder += digits[high];
    folder += digits[low];
    folder += '/';
    folder += low < 10 ? '0' : '1';
    folder += static_cast<char>('0' + low % 10);
    return folder + "/" + random.uuid();
}

} // namespace

AttachmentShelf::AttachmentShelf(std::filesystem::path messages, std::uint64_t seed, std::int64_t count)
    : messages_(std::move(messages)), random_(seed, "attachments"), seed_(seed), count_(count) {
    createFolders(messages_ / "Attachments");
}

AttachmentRow AttachmentShelf::recordFor(bool isFromMe) {
    ++taken_;
    AttachmentRow row;
    row.guid = isFromMe ? random_.uuid() : "at_0_" + random_.uuid();
    return row;
}

void AttachmentShelf::store(const AttachmentRow& row, const Data& contents) {
    const std::filesystem::path file =
        messages_ / row.storedPath->substr(std::string_view("~/Library/Messages/").size());
    createFolders(file.parent_path());
    FileWriter writer(file);
    writer.write(contents);
    writer.close();
    ++onDisk_;
}

std::optional<AttachmentRow> AttachmentShelf::take(std::string_view name, bool isFromMe) {
    if (remaining() <= 0) return std::nullopt;
    const auto media = namedMedia(name, seed_);
    assert(media.has_value());
    AttachmentRow row = recordFor(isFromMe);
    const std::string folder = folderFor(random_);
    row.transferName = media->transferName;
    row.mimeType = media->mimeType;
    row.uniformType = media->uniformType;
    row.byteCount = media->byteCount;
    if (media->presence != MediaPresence::withoutPath) {
        row.storedPath = "~/Library/Messages/" + folder + "/" + media->fileName;
    }
    const bool isStored =
        media->presence == MediaPresence::onDisk || media->presence == MediaPresence::zeroBytes;
    if (isStored) store(row, media->contents);
    return row;
}

std::optional<AttachmentRow> AttachmentShelf::takeSmallFile(bool isFromMe) {
    if (remaining() <= 0) return std::nullopt;
    const bool isStored = onDisk_ < attachmentFileLimit;
    const std::int64_t number = ++smallFiles_;
    const MediaFile media = isStored ? smallMedia(number, seed_) : absentMedia(number);
    AttachmentRow row = recordFor(isFromMe);
    row.transferName = media.transferName;
    row.mimeType = media.mimeType;
    row.uniformType = media.uniformType;
    row.byteCount = media.byteCount;
    row.storedPath = "~/Library/Messages/" + folderFor(random_) + "/" + media.fileName;
    if (isStored) store(row, media.contents);
    return row;
}

} // namespace quillbook::sample
