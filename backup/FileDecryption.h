#pragma once

#include "core/records/DescribedError.h"
#include "platform/FileReader.h"
#include "platform/FileWriter.h"

#include <cstdint>
#include <span>
#include <stop_token>
#include <string>

namespace quillbook {

/// The ciphertext of a file ends too early, or its key does not fit the cipher.
class BackupCryptoError final : public DescribedError {
public:
    std::string description() const override;
};

/// Decrypts the first `length` bytes of a file: AES in CBC mode, an initialisation vector of zeros, no
/// removal of padding. Streams, so a file is never in memory whole; what follows `length` is not read. Throws
/// BackupCryptoError, the FileError of either file, and CancellationError within one block of a request to
/// stop; what was written until then stays, for the caller to remove.
void decryptStream(FileReader& input, FileWriter& output, std::span<const std::uint8_t> key,
                   std::int64_t length, const std::stop_token& stop = {});

} // namespace quillbook
