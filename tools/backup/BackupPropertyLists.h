#pragma once

#include "tools/backup/BackupWriter.h"

namespace quillbook::sample {

/// The keys that Manifest.plist of an encrypted backup holds.
struct ManifestSecrets {
    Data keybag;
    Data manifestKey; ///< Wrapped, behind the number of its class.
};

/// Manifest.plist, binary. `secrets` are absent from a plain backup.
Data manifestPropertyList(const BackupDescription& description,
                          const std::optional<ManifestSecrets>& secrets);
/// Info.plist, XML.
Data infoPropertyList(const BackupDescription& description);
/// Status.plist, binary.
Data statusPropertyList(const BackupDescription& description);

} // namespace quillbook::sample
