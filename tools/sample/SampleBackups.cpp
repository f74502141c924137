#include "tools/sample/SampleBackups.h"

#include "tools/sample/MediaCatalog.h"
#include "tools/writing/DeterministicRandom.h"
#include "tools/writing/PropertyListWriting.h"

#include <algorithm>

#include <fmt/format.h>
#include <plist/plist.h>

namespace quillbook::sample {
namespace {

/// A device as a list of backups shows it. The dates lie behind the last message of every sample library.
struct SampleDevice {
    const char* name;
    const char* productType;
    const char* productVersion;
    double lastBackup; ///< Seconds since 2001.
};

constexpr SampleDevice newDevice{"Robin’s iPhone", "iPhone14,5", "17.5.1", 763'243'500};     // 2025-03-09
constexpr SampleDevice oldDevice{"Robin’s old iPhone", "iPhone11,8", "16.7.8", 761'421'900}; // 2025-02-16

const SampleDevice& deviceFor(BackupKind kind) {
    return kind == BackupKind::encrypted ? newDevice : oldDevice;
}

const char* subjectFor(BackupKind kind) {
    return kind == BackupKind::encrypted ? "encrypted backup" : "plain backup";
}

BackupDescription descriptionFor(const SampleOptions& options, BackupKind kind) {
    const SampleDevice& device = deviceFor(kind);
    BackupDescription description;
    description.folder = sampleBackupFolder(options, kind);
    description.deviceName = device.name;
    description.productType = device.productType;
    description.productVersion = device.productVersion;
    description.lastBackupDate.secondsSinceReferenceDate = device.lastBackup;
    description.seed = DeterministicRandom(options.seed, subjectFor(kind)).next();
    if (kind == BackupKind::encrypted) {
        BackupEncryption encryption;
        encryption.password = options.password;
        encryption.rounds = options.keyDerivationRounds;
        encryption.derivation = options.keyDerivation;
        description.encryption = std::move(encryption);
    }
    return description;
}

std::string preferences() {
    const PropertyList values(plist_new_dict());
    plist_dict_set_item(values.get(), "AppleLanguages", plist_new_string("en"));
    plist_dict_set_item(values.get(), "SBShowBatteryPercentage", plist_new_bool(1));
    const Data bytes = binaryPropertyList(values.get());
    return {bytes.begin(), bytes.end()};
}

/// Files of other applications, which nobody who reads messages asks for.
void addOtherFiles(BackupWriter& writer, std::uint64_t seed) {
    writer.addBytes("HomeDomain", "Library/Preferences/com.apple.springboard.plist", preferences());
    for (std::int64_t number = 1; number <= 3; ++number) {
        const Data picture = smallMedia(number, seed).contents;
        writer.addBytes("CameraRollDomain", fmt::format("Media/DCIM/100APPLE/IMG_{:04}.JPG", number),
                        std::string_view(reinterpret_cast<const char*>(picture.data()), picture.size()));
    }
}

bool hasEmptyFile(const std::filesystem::path& folder) {
    return std::any_of(std::filesystem::recursive_directory_iterator(folder), {},
                       [](const auto& entry) { return entry.is_regular_file() && entry.file_size() == 0; });
}

/// Every backup has a file of no bytes, which has no key.
void addEmptyFile(BackupWriter& writer) {
    BackupFileOptions options;
    options.hasKey = false;
    writer.addBytes("MediaDomain", "Library/SMS/Attachments/00/00/empty/Empty note.txt", "", options);
}

} // namespace

std::filesystem::path sampleBackupFolder(const SampleOptions& options, BackupKind kind) {
    DeterministicRandom random(options.seed, std::string(subjectFor(kind)) + " identifier");
    return options.home / "Library" / "Application Support" / "MobileSync" / "Backup" /
           fmt::format("00008110-{:016X}", random.next());
}

std::vector<SampleBackup> writeSampleBackups(const SampleOptions& options,
                                             const std::filesystem::path& messagesFolder) {
    std::vector<SampleBackup> backups;
    for (const BackupKind kind : options.backups) {
        BackupDescription description = descriptionFor(options, kind);
        backups.push_back({description.folder, description.deviceName, kind});
        BackupWriter writer(std::move(description));
        addMessagesLibrary(writer, messagesFolder);
        if (!hasEmptyFile(messagesFolder / "Attachments")) addEmptyFile(writer);
        addOtherFiles(writer, options.seed);
        writer.finish();
    }
    return backups;
}

} // namespace quillbook::sample
