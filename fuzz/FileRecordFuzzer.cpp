#include "backup/BackupError.h"
#include "backup/BinaryPlist.h"
#include "backup/FileRecord.h"
#include "fuzz/Harness.h"

#include <algorithm>
#include <string>

namespace quillbook {
namespace {

struct Outcome {
    std::optional<FileRecord> record;
    std::optional<BackupError> unreadable;
    std::optional<BinaryPlistError> damaged;

    bool operator==(const Outcome&) const = default;
};

Outcome outcomeOf(std::span<const std::uint8_t> blob) {
    try {
        return {.record = fileRecord(blob)};
    } catch (const BackupError& error) {
        return {.unreadable = error};
    } catch (const BinaryPlistError& error) {
        return {.damaged = error};
    }
}

std::optional<BinaryPlistError> errorOfList(std::span<const std::uint8_t> blob) {
    try {
        BinaryPlist::parse(blob);
        return std::nullopt;
    } catch (const BinaryPlistError& error) {
        return error;
    }
}

/// What a record says stands in the blob as it is.
void checkRecord(const FileRecord& record, std::span<const std::uint8_t> blob) {
    const auto objects = BinaryPlist::parse(blob).objects;
    const auto isSize = [&](const PlistValue& value) {
        const auto* number = value.as<std::int64_t>();
        return number != nullptr && *number == record.size;
    };
    fuzz::require(std::any_of(objects.begin(), objects.end(), isSize), "the size is an integer of the list");
    if (!record.encryptionKey) return;
    const auto isKey = [&](const PlistValue& value) {
        const auto* data = value.as<PlistData>();
        return data != nullptr && **data == *record.encryptionKey;
    };
    fuzz::require(std::any_of(objects.begin(), objects.end(), isKey), "the key is data of the list");
    const auto& key = *record.encryptionKey;
    fuzz::require(std::search(blob.begin(), blob.end(), key.begin(), key.end()) != blob.end() || key.empty(),
                  "the key stands in the blob");
}

} // namespace
} // namespace quillbook

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quillbook;
    const std::span<const std::uint8_t> blob(data, size);
    const Outcome outcome = outcomeOf(blob);
    fuzz::require(outcome == outcomeOf(blob), "a blob gives the same record each time, or fails alike");
    fuzz::require(outcome.damaged == errorOfList(blob), "the errors of the list come out as they stand");
    if (outcome.damaged) fuzz::require(!outcome.damaged->description().empty(), "an error has words");
    if (outcome.unreadable)
        fuzz::require(*outcome.unreadable == BackupError(BackupError::Reason::manifestUnreadable),
                      "a list that holds no record is an unreadable manifest");
    if (outcome.record) checkRecord(*outcome.record, blob);
    return 0;
}
