#include "tools/backup/BackupKeys.h"

#include "tools/backup/BackupCiphers.h"

#include <algorithm>
#include <array>

namespace quillbook::sample {
namespace {

constexpr std::size_t keyBytes = 32;
constexpr std::size_t wrappedKeyBytes = 40;
constexpr std::size_t identifierBytes = 16;
constexpr std::size_t saltBytes = 20;
/// With two steps the second one is quick: the first has done the work.
constexpr std::int64_t secondStepRounds = 10'000;

constexpr std::uint32_t wrappedByDevice = 1;
constexpr std::uint32_t wrappedByPassword = 2;

struct ProtectionClass {
    std::uint32_t number;
    std::uint32_t wrap;
    bool isAsymmetric = false;
};

constexpr std::array protectionClasses = {
    ProtectionClass{1, wrappedByPassword},
    ProtectionClass{2, wrappedByPassword, true},
    ProtectionClass{3, wrappedByPassword},
    ProtectionClass{4, wrappedByPassword},
    ProtectionClass{5, wrappedByDevice},
    ProtectionClass{6, wrappedByPassword},
    ProtectionClass{7, wrappedByPassword},
    ProtectionClass{8, wrappedByDevice},
    ProtectionClass{9, wrappedByDevice},
    ProtectionClass{10, wrappedByPassword},
    ProtectionClass{11, wrappedByDevice | wrappedByPassword},
};

Data bigEndian(std::uint64_t value, unsigned byteCount) {
    Data bytes;
    for (unsigned index = byteCount; index > 0; --index)
        bytes.push_back(static_cast<std::uint8_t>(value >> (8U * (index - 1))));
    return bytes;
}

/// Four bytes, or eight for what four cannot hold.
Data roundsValue(std::int64_t rounds) {
    const auto value = static_cast<std::uint64_t>(rounds);
    return bigEndian(value, value > 0xFFFFFFFFU ? 8 : 4);
}

void append(Data& bytes, const Data& more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

void appendRecord(Data& keybag, std::string_view tag, const Data& value) {
    keybag.insert(keybag.end(), tag.begin(), tag.end());
    append(keybag, bigEndian(value.size(), 4));
    append(keybag, value);
}

} // namespace

bool BackupKeys::hasFirstStep() const {
    const auto& omitted = encryption_.omittedTags;
    return encryption_.derivation == KeyDerivation::twofold && omitted.count("DPSL") == 0 &&
           omitted.count("DPIC") == 0;
}

std::int64_t BackupKeys::secondRounds() const {
    return encryption_.derivation == KeyDerivation::twofold ? std::min(encryption_.rounds, secondStepRounds)
                                                            : encryption_.rounds;
}

Data BackupKeys::classKey(std::uint32_t protectionClass) const {
    return deterministicBytes(seed_, "class key " + std::to_string(protectionClass), keyBytes);
}

Data BackupKeys::keyFor(std::string_view subject) const {
    std::string name = "key of ";
    name += subject;
    return deterministicBytes(seed_, name, keyBytes);
}

Data BackupKeys::passwordKey() const {
    Data material(encryption_.password.begin(), encryption_.password.end());
    if (hasFirstStep()) {
        material = derivedKey(material, deterministicBytes(seed_, "DPSL", saltBytes), encryption_.rounds,
                              PasswordHash::sha256);
    }
    return derivedKey(material, deterministicBytes(seed_, "SALT", saltBytes), secondRounds(),
                      PasswordHash::sha1);
}

Data BackupKeys::keybag() const {
    Data keybag;
    const auto header = [&](const char* tag, const Data& value) {
        if (encryption_.omittedTags.count(tag) == 0) appendRecord(keybag, tag, value);
    };
    const bool isTwofold = encryption_.derivation == KeyDerivation::twofold;
    const std::int64_t claimed = encryption_.claimedRounds.value_or(encryption_.rounds);
    header("VERS", bigEndian(isTwofold ? 4 : 3, 4));
    header("TYPE", bigEndian(1, 4));
    header("UUID", deterministicBytes(seed_, "UUID", identifierBytes));
    header("HMCK", deterministicBytes(seed_, "HMCK", wrappedKeyBytes));
    header("WRAP", bigEndian(0, 4));
    header("SALT", deterministicBytes(seed_, "SALT", saltBytes));
    header("ITER", roundsValue(isTwofold ? secondRounds() : claimed));
    if (isTwofold) {
        header("DPWT", bigEndian(1, 4));
        header("DPIC", roundsValue(claimed));
        header("DPSL", deterministicBytes(seed_, "DPSL", saltBytes));
    }
    const Data password = passwordKey();
    for (const ProtectionClass& entry : protectionClasses) {
        const std::string number = std::to_string(entry.number);
        const bool isOpened = (entry.wrap & wrappedByPassword) != 0;
        appendRecord(keybag, "UUID", deterministicBytes(seed_, "UUID " + number, identifierBytes));
        appendRecord(keybag, "CLAS", bigEndian(entry.number, 4));
        appendRecord(keybag, "WRAP", bigEndian(entry.wrap, 4));
        appendRecord(keybag, "KTYP", bigEndian(entry.isAsymmetric ? 1 : 0, 4));
        appendRecord(keybag, "WPKY",
                     isOpened ? wrappedKey(password, classKey(entry.number))
                              : deterministicBytes(seed_, "WPKY " + number, wrappedKeyBytes));
        if (entry.isAsymmetric)
            appendRecord(keybag, "PBKY", deterministicBytes(seed_, "PBKY " + number, keyBytes));
    }
    return keybag;
}

Data BackupKeys::protectedKey(std::uint32_t protectionClass, const Data& key) const {
    Data blob;
    for (unsigned index = 0; index < 4; ++index)
        blob.push_back(static_cast<std::uint8_t>(protectionClass >> (8U * index)));
    append(blob, wrappedKey(classKey(protectionClass), key));
    return blob;
}

} // namespace quillbook::sample
