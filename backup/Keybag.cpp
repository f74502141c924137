#include "backup/Keybag.h"

#include "backup/BackupError.h"
#include "backup/KeyDerivation.h"
#include "backup/KeyWrap.h"
#include "core/records/Cancellation.h"
#include "core/text/UTF8.h"

#include <limits>
#include <optional>
#include <utility>

namespace quillbook {
namespace {

using Reason = BackupError::Reason;
using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t tagSize = 4;
constexpr std::size_t recordStartSize = 8;
constexpr std::size_t classNumberSize = 4;
constexpr std::uint8_t isWrappedByPassword = 2; // A flag of "WRAP"; 1 is the device's own wrap.

/// The low 32 bits of a number of any length.
std::uint32_t lowBigEndian32(Bytes bytes) {
    std::uint32_t number = 0;
    for (const std::uint8_t byte : bytes)
        number = number << 8U | byte;
    return number;
}

std::uint32_t littleEndian32(Bytes bytes) {
    std::uint32_t number = 0;
    for (std::size_t index = classNumberSize; index-- > 0;)
        number = number << 8U | bytes[index];
    return number;
}

/// A number of rounds, of any length: one beyond 64 bits would never be done either, and counts as the
/// greatest.
std::uint64_t roundsOf(Bytes bytes) {
    constexpr auto greatest = std::numeric_limits<std::uint64_t>::max();
    std::uint64_t number = 0;
    for (const std::uint8_t byte : bytes) {
        if (number > greatest >> 8U) return greatest;
        number = number << 8U | byte;
    }
    return number;
}

std::string tagOf(Bytes bytes) {
    return repairedUTF8({reinterpret_cast<const char*>(bytes.data()), tagSize});
}

/// Takes the records in their order. A class record has no end of its own: the next one's start or the end of
/// the keybag closes it.
class KeybagParser {
public:
    void take(std::string_view tag, Bytes value) {
        if (tag == "UUID") return takeIdentifier(value);
        if (tag == "CLAS") classNumber_ = lowBigEndian32(value);
        const bool isOfClass =
            tag == "CLAS" || tag == "WRAP" || tag == "WPKY" || tag == "KTYP" || tag == "PBKY";
        if (isOfClass && currentClass_) {
            store(*currentClass_, tag, value);
        } else if (!isOfClass || tag == "WRAP") {
            store(keybag_.header, tag, value);
        }
    }

    ParsedKeybag finish() {
        closeClass();
        if (!hasIdentifier_) throw BackupError(Reason::malformedKeybag);
        return std::move(keybag_);
    }

private:
    static void store(KeybagFields& fields, std::string_view tag, Bytes value) {
        fields.insert_or_assign(std::string(tag), Data(value.begin(), value.end()));
    }

    /// The first identifier is the keybag's; each later one opens a class record.
    void takeIdentifier(Bytes value) {
        if (!hasIdentifier_) {
            hasIdentifier_ = true;
            return store(keybag_.header, "UUID", value);
        }
        closeClass();
        currentClass_.emplace();
        classNumber_.reset();
    }

    void closeClass() {
        if (!currentClass_ || !classNumber_) return;
        keybag_.classes.insert_or_assign(*classNumber_, *std::move(currentClass_));
    }

    ParsedKeybag keybag_;
    std::optional<KeybagFields> currentClass_;
    std::optional<std::uint32_t> classNumber_;
    bool hasIdentifier_ = false;
};

const Data* fieldOf(const KeybagFields& fields, std::string_view tag) {
    const auto field = fields.find(tag);
    return field == fields.end() ? nullptr : &field->second;
}

const Data& requiredField(const KeybagFields& fields, std::string_view tag) {
    const Data* field = fieldOf(fields, tag);
    if (field == nullptr) throw BackupError(Reason::malformedKeybag);
    return *field;
}

/// Newer keybags derive twice. The slow step comes first then, and is left out where one of its fields is.
SecretBytes passwordKey(std::string_view password, const KeybagFields& header, const std::stop_token& stop) {
    const Data& salt = requiredField(header, "SALT");
    const std::uint64_t rounds = roundsOf(requiredField(header, "ITER"));
    if (rounds == 0) throw BackupError(Reason::malformedKeybag);
    SecretBytes material(password.begin(), password.end());
    const Data* firstSalt = fieldOf(header, "DPSL");
    const Data* firstRounds = fieldOf(header, "DPIC");
    if (firstSalt != nullptr && firstRounds != nullptr)
        material = deriveKey(KeyDerivationHash::sha256, material, *firstSalt, roundsOf(*firstRounds), stop);
    return deriveKey(KeyDerivationHash::sha1, material, salt, rounds, stop);
}

/// Null for a class that the password does not open, such as one wrapped by the device alone.
const Data* passwordWrappedKey(const KeybagFields& fields) {
    const Data* flags = fieldOf(fields, "WRAP");
    if (flags == nullptr || flags->empty() || (flags->back() & isWrappedByPassword) == 0) return nullptr;
    return fieldOf(fields, "WPKY");
}

BackupError unknownClass(std::uint32_t number) {
    std::string reason = "protection class ";
    reason += std::to_string(number);
    return BackupError(Reason::unsupportedBackup, std::move(reason));
}

} // namespace

ParsedKeybag parseKeybag(Bytes bytes, const std::stop_token& stop) {
    KeybagParser parser;
    while (bytes.size() >= recordStartSize) {
        throwIfCancelled(stop);
        const std::string tag = tagOf(bytes);
        const std::size_t length = lowBigEndian32(bytes.subspan(tagSize, recordStartSize - tagSize));
        bytes = bytes.subspan(recordStartSize);
        if (length > bytes.size()) throw BackupError(Reason::malformedKeybag);
        parser.take(tag, bytes.first(length));
        bytes = bytes.subspan(length);
    }
    return parser.finish();
}

UnlockedKeybag unlock(std::string_view password, const ParsedKeybag& keybag, const std::stop_token& stop) {
    const SecretBytes key = passwordKey(password, keybag.header, stop);
    UnlockedKeybag unlocked;
    for (const auto& [number, fields] : keybag.classes) {
        const Data* wrapped = passwordWrappedKey(fields);
        if (wrapped == nullptr) continue;
        auto classKey = aesKeyUnwrap(key, *wrapped, stop);
        // The integrity value of the wrap is the only test of the password there is.
        if (!classKey) throw BackupError(Reason::wrongPassword);
        unlocked.classKeys.emplace(number, *std::move(classKey));
    }
    if (unlocked.classKeys.empty())
        throw BackupError(Reason::unsupportedBackup, "no passcode-wrapped class keys");
    return unlocked;
}

SecretBytes unwrapProtectedKey(Bytes blob, const UnlockedKeybag* keybag, const std::stop_token& stop) {
    if (keybag == nullptr || blob.size() <= classNumberSize) throw BackupError(Reason::manifestUnreadable);
    const std::uint32_t number = littleEndian32(blob);
    const auto classKey = keybag->classKeys.find(number);
    if (classKey == keybag->classKeys.end()) throw unknownClass(number);
    auto key = aesKeyUnwrap(classKey->second, blob.subspan(classNumberSize), stop);
    if (!key) throw BackupError(Reason::manifestUnreadable);
    return *std::move(key);
}

} // namespace quillbook
