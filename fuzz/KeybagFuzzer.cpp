#include "backup/BackupError.h"
#include "backup/Keybag.h"
#include "core/text/UTF8.h"
#include "fuzz/Harness.h"

#include <algorithm>
#include <optional>

namespace quillbook {
namespace {

using Bytes = std::span<const std::uint8_t>;
using Reason = BackupError::Reason;

constexpr std::size_t mostRounds = 100;

std::optional<ParsedKeybag> keybagOf(Bytes bytes) {
    try {
        return parseKeybag(bytes);
    } catch (const BackupError& error) {
        fuzz::require(error == BackupError(Reason::malformedKeybag), "what is no keybag is malformed");
        return std::nullopt;
    }
}

std::size_t sizeOf(const KeybagFields& fields) {
    std::size_t size = 0;
    for (const auto& [tag, value] : fields) {
        fuzz::require(isValidUTF8(tag), "every tag is UTF-8");
        size += 8 + value.size();
    }
    return size;
}

void checkKeybag(const ParsedKeybag& keybag, std::size_t inputSize) {
    std::size_t size = sizeOf(keybag.header);
    fuzz::require(keybag.header.contains("UUID"), "a keybag has an identifier");
    for (const auto& [number, fields] : keybag.classes) {
        fuzz::require(fields.contains("CLAS"), "a class has a number");
        size += 8 + sizeOf(fields);
    }
    fuzz::require(size <= inputSize, "a keybag holds no more than its input");
}

/// Attackers may ask for any number of rounds; here only what takes no time is granted.
bool hasFewRounds(const KeybagFields& header) {
    for (const char* tag : {"ITER", "DPIC"}) {
        const auto field = header.find(tag);
        if (field == header.end() || field->second.empty()) continue;
        const Data& rounds = field->second;
        const bool isShort =
            std::all_of(rounds.begin(), rounds.end() - 1, [](auto byte) { return byte == 0; });
        if (!isShort || rounds.back() > mostRounds) return false;
    }
    return true;
}

void tryToUnlock(const ParsedKeybag& keybag) {
    if (!hasFewRounds(keybag.header)) return;
    try {
        const auto unlocked = unlock("a password", keybag);
        fuzz::require(!unlocked.classKeys.empty(), "what opens has keys");
        for (const auto& [number, key] : unlocked.classKeys)
            fuzz::require(keybag.classes.at(number).at("WPKY").size() == key.size() + 8,
                          "a wrap is 8 bytes longer than its key");
    } catch (const BackupError& error) {
        fuzz::require(error.reason != Reason::manifestUnreadable, "a keybag does not speak of the manifest");
    }
}

void tryToUnwrap(Bytes blob, const UnlockedKeybag* keybag) {
    try {
        const auto key = unwrapProtectedKey(blob, keybag);
        fuzz::require(keybag != nullptr && blob.size() == key.size() + 12,
                      "a blob is 12 bytes longer than its key");
    } catch (const BackupError& error) {
        fuzz::require(error.reason == Reason::manifestUnreadable || error.reason == Reason::unsupportedBackup,
                      "a blob fails for itself or for its class");
    }
}

UnlockedKeybag smallKeybag() {
    return {
        .classKeys = {{1, SecretBytes(16, 1)},
                      {2, SecretBytes(24, 2)},
                      {4, SecretBytes(32, 4)},
                      {0x44495555, SecretBytes(32, 5)}, // "UUID", so that whole keybags are blobs of a class.
                      {7, SecretBytes(3, 7)}}};
}

} // namespace
} // namespace quillbook

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quillbook;
    static const UnlockedKeybag unlocked = smallKeybag();
    const Bytes bytes(data, size);
    tryToUnwrap(bytes, &unlocked);
    tryToUnwrap(bytes, nullptr);
    const auto keybag = keybagOf(bytes);
    fuzz::require(keybag == keybagOf(bytes), "bytes give the same keybag each time");
    if (!keybag) return 0;
    checkKeybag(*keybag, size);
    for (const auto& [tag, value] : keybag->header)
        tryToUnwrap(value, &unlocked);
    tryToUnlock(*keybag);
    return 0;
}
