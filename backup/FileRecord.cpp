#include "backup/FileRecord.h"

#include "backup/BackupError.h"
#include "backup/BinaryPlist.h"

namespace quillbook {
namespace {

[[noreturn]] void throwUnreadable() {
    throw BackupError(BackupError::Reason::manifestUnreadable);
}

/// The keyed archive of a file's record.
class RecordArchive {
public:
    explicit RecordArchive(const BinaryPlist& list) : list_(list), objects_(archiveObjects(list)) {}

    PlistDictionary record() const {
        return required<PlistDictionary>(required<PlistDictionary>(topObject(list_), "$top"), "root");
    }

    std::optional<PlistValue> value(const PlistDictionary& dictionary, std::string_view key) const {
        const PlistValue* found = dictionary->find(key);
        return found == nullptr ? std::nullopt : resolve(*found, list_.objects, *objects_);
    }

    template <typename Case>
    Case required(const PlistDictionary& dictionary, std::string_view key) const {
        const auto found = value(dictionary, key);
        const Case* content = found ? found->as<Case>() : nullptr;
        if (content == nullptr) throwUnreadable();
        return *content;
    }

private:
    static const PlistDictionary& topObject(const BinaryPlist& list) {
        const auto* dictionary = list.objects[list.root].as<PlistDictionary>();
        if (dictionary == nullptr) throwUnreadable();
        return *dictionary;
    }

    /// "$objects" itself is found by the file's own numbers alone.
    static const PlistArray& archiveObjects(const BinaryPlist& list) {
        const PlistValue* found = topObject(list)->find("$objects");
        if (found == nullptr) throwUnreadable();
        if (const auto* reference = found->as<PlistUID>()) {
            if (static_cast<std::uint64_t>(reference->number) >= list.objects.size()) throwUnreadable();
            found = &list.objects[static_cast<std::size_t>(reference->number)];
        }
        const auto* array = found->as<PlistArray>();
        if (array == nullptr) throwUnreadable();
        return *array;
    }

    const BinaryPlist& list_;
    const PlistArray& objects_;
};

/// A key stands for itself or in an instance of NSData. One of any other form counts as none: whoever needs
/// it decides what that means.
std::optional<Data> encryptionKey(const RecordArchive& archive, const PlistDictionary& record) {
    auto value = archive.value(record, "EncryptionKey");
    if (const auto* instance = value ? value->as<PlistDictionary>() : nullptr)
        value = archive.value(*instance, "NS.data");
    const auto* data = value ? value->as<PlistData>() : nullptr;
    return data == nullptr ? std::nullopt : std::optional<Data>(**data);
}

} // namespace

FileRecord fileRecord(std::span<const std::uint8_t> blob) {
    // A record has some hundred bytes; read, a list takes many times its own size.
    constexpr std::size_t longestRecord = 4U << 20U;
    if (blob.size() > longestRecord) throw BinaryPlistError(BinaryPlistError::Reason::truncated);
    const BinaryPlist list = BinaryPlist::parse(blob);
    const RecordArchive archive(list);
    const PlistDictionary record = archive.record();
    return {archive.required<std::int64_t>(record, "Size"), encryptionKey(archive, record)};
}

} // namespace quillbook
