#include "tools/backup/BackupPropertyLists.h"

#include "tools/writing/DeterministicRandom.h"
#include "tools/writing/PropertyListWriting.h"

#include <cmath>

#include <plist/plist.h>

namespace quillbook::sample {
namespace {

void setText(void* dictionary, const char* key, const std::string& text) {
    plist_dict_set_item(dictionary, key, plist_new_string(text.c_str()));
}

/// libplist counts from 2001 too, in whole seconds and millionths.
void setDate(void* dictionary, const char* key, Date date) {
    const double seconds = std::floor(date.secondsSinceReferenceDate);
    const double millionths = (date.secondsSinceReferenceDate - seconds) * 1e6;
    plist_dict_set_item(
        dictionary, key,
        plist_new_date(static_cast<std::int32_t>(seconds), static_cast<std::int32_t>(millionths)));
}

void setTruth(void* dictionary, const char* key, bool value) {
    plist_dict_set_item(dictionary, key, plist_new_bool(value ? 1 : 0));
}

std::string serialNumber(std::uint64_t seed) {
    constexpr std::string_view letters = "CDFGHJKLMNPQRTVWXY0123456789";
    DeterministicRandom random(seed, "serial number");
    std::string serial;
    while (serial.size() < 10)
        serial += letters[random.below(letters.size())];
    return serial;
}

std::string identifierOf(const BackupDescription& description) {
    return description.folder.filename().string();
}

} // namespace

Data manifestPropertyList(const BackupDescription& description,
                          const std::optional<ManifestSecrets>& secrets) {
    void* lockdown = plist_new_dict();
    setText(lockdown, "DeviceName", description.deviceName);
    setText(lockdown, "ProductType", description.productType);
    setText(lockdown, "ProductVersion", description.productVersion);
    setText(lockdown, "SerialNumber", serialNumber(description.seed));
    setText(lockdown, "UniqueDeviceID", identifierOf(description));
    const PropertyList manifest(plist_new_dict());
    setText(manifest.get(), "Version", "10.0");
    setText(manifest.get(), "SystemDomainsVersion", "24.0");
    setDate(manifest.get(), "Date", description.lastBackupDate);
    setTruth(manifest.get(), "IsEncrypted", secrets.has_value());
    setTruth(manifest.get(), "WasPasscodeSet", true);
    plist_dict_set_item(manifest.get(), "Lockdown", lockdown);
    plist_dict_set_item(manifest.get(), "Applications", plist_new_dict());
    if (secrets) {
        plist_dict_set_item(manifest.get(), "BackupKeyBag", dataNode(secrets->keybag));
        plist_dict_set_item(manifest.get(), "ManifestKey", dataNode(secrets->manifestKey));
    }
    return binaryPropertyList(manifest.get());
}

Data infoPropertyList(const BackupDescription& description) {
    DeterministicRandom random(description.seed, "Info.plist");
    const PropertyList info(plist_new_dict());
    setText(info.get(), "Device Name", description.deviceName);
    setText(info.get(), "Display Name", description.deviceName);
    setText(info.get(), "GUID", random.uuid());
    setDate(info.get(), "Last Backup Date", description.lastBackupDate);
    setText(info.get(), "Product Type", description.productType);
    setText(info.get(), "Product Version", description.productVersion);
    setText(info.get(), "Serial Number", serialNumber(description.seed));
    setText(info.get(), "Target Identifier", identifierOf(description));
    setText(info.get(), "Target Type", "Device");
    setText(info.get(), "Unique Identifier", identifierOf(description));
    return xmlPropertyList(info.get());
}

Data statusPropertyList(const BackupDescription& description) {
    DeterministicRandom random(description.seed, "Status.plist");
    const PropertyList status(plist_new_dict());
    setText(status.get(), "BackupState", "new");
    setDate(status.get(), "Date", description.lastBackupDate);
    setTruth(status.get(), "IsFullBackup", true);
    setText(status.get(), "SnapshotState", "finished");
    setText(status.get(), "UUID", random.uuid());
    setText(status.get(), "Version", "3.3");
    return binaryPropertyList(status.get());
}

} // namespace quillbook::sample
