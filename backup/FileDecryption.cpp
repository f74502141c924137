#include "backup/FileDecryption.h"

#include "backup/AESDecryptor.h"
#include "core/records/Cancellation.h"
#include "core/text/Localization.h"

#include <algorithm>
#include <memory>

namespace quillbook {
namespace {

/// Room for bytes that are written before they are read, so it starts out as it comes; it grows to the
/// largest block, and that is the first one.
class OutputBuffer {
public:
    std::span<std::uint8_t> ofSize(std::size_t size) {
        if (size > size_) {
            bytes_ = std::make_unique_for_overwrite<std::uint8_t[]>(size);
            size_ = size;
        }
        return {bytes_.get(), size};
    }

private:
    std::unique_ptr<std::uint8_t[]> bytes_;
    std::size_t size_ = 0;
};

} // namespace

std::string BackupCryptoError::description() const {
    return localized("An unexpected error occurred.");
}

void decryptStream(FileReader& input, FileWriter& output, std::span<const std::uint8_t> key,
                   std::int64_t length, const std::stop_token& stop) {
    if (length < 0) throw BackupCryptoError();
    auto cipher = AESDecryptor::make(AESDecryptor::Mode::chained, key);
    if (!cipher) throw BackupCryptoError();
    OutputBuffer buffer;
    for (auto remaining = static_cast<std::uint64_t>(length); remaining > 0;) {
        throwIfCancelled(stop);
        const auto block = input.next();
        if (block.empty()) throw BackupCryptoError();
        const auto plaintext = buffer.ofSize(block.size() + AESDecryptor::blockSize);
        const auto delivered = cipher->decrypt(block, plaintext);
        if (!delivered) throw BackupCryptoError();
        const auto kept = std::min<std::uint64_t>(*delivered, remaining);
        output.write(plaintext.first(kept));
        remaining -= kept;
    }
}

} // namespace quillbook
