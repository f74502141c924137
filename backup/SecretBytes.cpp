#include "backup/SecretBytes.h"

#include <openssl/crypto.h>

namespace quillbook {

void overwriteMemory(void* start, std::size_t count) noexcept {
    OPENSSL_cleanse(start, count);
}

} // namespace quillbook
