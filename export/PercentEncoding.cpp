#include "export/PercentEncoding.h"

#include "export/ByteSet.h"

namespace quillbook {
namespace {

constexpr ByteSet plainBytes("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/");
constexpr std::string_view hexDigits = "0123456789ABCDEF";

} // namespace

void appendPercentEncoded(std::string& link, std::string_view path) {
    for (const char byte : path) {
        if (plainBytes.contains(byte)) {
            link += byte;
            continue;
        }
        const auto code = static_cast<unsigned char>(byte);
        link += '%';
        link += hexDigits[code >> 4U];
        link += hexDigits[code & 0xFU];
    }
}

} // namespace quillbook
