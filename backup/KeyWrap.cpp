#include "backup/KeyWrap.h"

#include "backup/AESDecryptor.h"
#include "core/records/Cancellation.h"

#include <algorithm>

namespace quillbook {
namespace {

constexpr std::size_t halfBlock = AESDecryptor::blockSize / 2;
constexpr std::size_t steps = 6;
constexpr std::uint8_t integrityByte = 0xA6; // RFC 3394, section 2.2.3.1

void xorBigEndian(std::span<std::uint8_t> bytes, std::uint64_t number) {
    for (std::size_t index = bytes.size(); index-- > 0; number >>= 8U)
        bytes[index] ^= static_cast<std::uint8_t>(number);
}

/// RFC 3394, section 2.2.2, index-based. `sum` is A of the RFC; `registers` hold R[1] to R[n] one after the
/// other.
bool unwind(AESDecryptor& cipher, std::span<std::uint8_t> sum, std::span<std::uint8_t> registers,
            const std::stop_token& stop) {
    constexpr std::uint64_t blocksBetweenLooks = 4'096;
    SecretArray<AESDecryptor::blockSize> input;
    SecretArray<AESDecryptor::blockSize> output;
    const std::uint64_t count = registers.size() / halfBlock;
    for (std::uint64_t step = steps; step-- > 0;) {
        for (std::uint64_t index = count; index > 0; --index) {
            if (index % blocksBetweenLooks == 0) throwIfCancelled(stop);
            const auto entry = registers.subspan((index - 1) * halfBlock, halfBlock);
            xorBigEndian(sum, count * step + index);
            std::copy(entry.begin(), entry.end(), std::copy(sum.begin(), sum.end(), input.begin()));
            if (cipher.decrypt(input, output) != output.size()) return false;
            std::copy_n(output.begin(), halfBlock, sum.begin());
            std::copy_n(output.begin() + halfBlock, halfBlock, entry.begin());
        }
    }
    return true;
}

} // namespace

std::optional<SecretBytes> aesKeyUnwrap(std::span<const std::uint8_t> key,
                                        std::span<const std::uint8_t> wrapped, const std::stop_token& stop) {
    if (wrapped.size() % halfBlock != 0 || wrapped.size() < 3 * halfBlock) return std::nullopt;
    auto cipher = AESDecryptor::make(AESDecryptor::Mode::separate, key);
    if (!cipher) return std::nullopt;
    SecretArray<halfBlock> sum;
    std::copy_n(wrapped.begin(), halfBlock, sum.begin());
    SecretBytes registers(wrapped.begin() + halfBlock, wrapped.end());
    if (!unwind(*cipher, sum, registers, stop)) return std::nullopt;
    const bool isSound =
        std::all_of(sum.begin(), sum.end(), [](std::uint8_t byte) { return byte == integrityByte; });
    return isSound ? std::optional(std::move(registers)) : std::nullopt;
}

} // namespace quillbook
