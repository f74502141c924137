#pragma once

#include "tools/backup/BackupWriter.h"

namespace quillbook::sample {

/// The class keys of one encrypted backup and the keybag that holds them. All follow from the seed.
class BackupKeys {
public:
    BackupKeys(BackupEncryption encryption, std::uint64_t seed)
        : encryption_(std::move(encryption)), seed_(seed) {}

    /// As Manifest.plist holds it. Takes as long as the rounds ask for. Throws SampleError.
    Data keybag() const;
    /// A new key for the subject, which is a file's identifier or the index.
    Data keyFor(std::string_view subject) const;
    /// The class number and the key wrapped with that class's key. Throws SampleError.
    Data protectedKey(std::uint32_t protectionClass, const Data& key) const;

private:
    Data classKey(std::uint32_t protectionClass) const;
    Data passwordKey() const;
    bool hasFirstStep() const;
    std::int64_t secondRounds() const;

    BackupEncryption encryption_;
    std::uint64_t seed_;
};

} // namespace quillbook::sample
