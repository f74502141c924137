#include "tools/sample/ImageEncoders.h"

#include <map>
#include <string_view>

namespace quillbook::sample {
namespace {

// GIF89a, appendix F: codes begin with one bit more than the colours have, and grow up to twelve bits.
constexpr unsigned colourBits = 8;
constexpr unsigned clearCode = 1U << colourBits;
constexpr unsigned endCode = clearCode + 1;
constexpr unsigned codeLimit = 4096;
constexpr unsigned redLevels = 6;
constexpr unsigned greenLevels = 7;
constexpr unsigned blueLevels = 6;

void append(Data& bytes, std::string_view text) {
    for (const char letter : text)
        bytes.push_back(static_cast<std::uint8_t>(letter));
}

void appendShort(Data& bytes, unsigned value) {
    bytes.push_back(static_cast<std::uint8_t>(value));
    bytes.push_back(static_cast<std::uint8_t>(value >> 8U));
}

/// The nearest of `levels` evenly spaced values.
unsigned level(unsigned component, unsigned levels) {
    return (component * (levels - 1) + 127) / 255;
}

std::uint8_t paletteIndex(std::uint32_t pixel) {
    const unsigned red = level(pixel >> 16U & 0xFFU, redLevels);
    const unsigned green = level(pixel >> 8U & 0xFFU, greenLevels);
    const unsigned blue = level(pixel & 0xFFU, blueLevels);
    return static_cast<std::uint8_t>((red * greenLevels + green) * blueLevels + blue);
}

void appendPalette(Data& bytes) {
    const auto component = [](unsigned step, unsigned levels) {
        return static_cast<std::uint8_t>(step < levels ? step * 255 / (levels - 1) : 0);
    };
    for (unsigned index = 0; index < (1U << colourBits); ++index) {
        bytes.push_back(component(index / (greenLevels * blueLevels), redLevels));
        bytes.push_back(component(index / blueLevels % greenLevels, greenLevels));
        bytes.push_back(component(index % blueLevels, blueLevels));
    }
}

/// Packs codes from the lowest bit on, in sub-blocks of at most 255 bytes.
class CodeWriter {
public:
    explicit CodeWriter(Data& bytes) : bytes_(bytes) {}

    void put(unsigned code, unsigned bits) {
        pending_ |= code << pendingBits_;
        for (pendingBits_ += bits; pendingBits_ >= 8; pendingBits_ -= 8) {
            putByte(static_cast<std::uint8_t>(pending_));
            pending_ >>= 8U;
        }
    }
    void finish() {
        if (pendingBits_ > 0) putByte(static_cast<std::uint8_t>(pending_));
        flush();
        bytes_.push_back(0);
    }

private:
    void putByte(std::uint8_t byte) {
        block_.push_back(byte);
        if (block_.size() == 255) flush();
    }
    void flush() {
        if (block_.empty()) return;
        bytes_.push_back(static_cast<std::uint8_t>(block_.size()));
        bytes_.insert(bytes_.end(), block_.begin(), block_.end());
        block_.clear();
    }

    Data& bytes_;
    Data block_;
    unsigned pending_ = 0;
    unsigned pendingBits_ = 0;
};

void appendCompressed(Data& bytes, const std::vector<std::uint32_t>& pixels) {
    bytes.push_back(colourBits);
    CodeWriter codes(bytes);
    std::map<unsigned, unsigned> dictionary; // A prefix code and a colour to the code of both together.
    unsigned bits = colourBits + 1;
    unsigned nextCode = endCode + 1;
    unsigned prefix = paletteIndex(pixels.front());
    codes.put(clearCode, bits);
    for (std::size_t index = 1; index < pixels.size(); ++index) {
        const unsigned colourIndex = paletteIndex(pixels[index]);
        const unsigned key = prefix << colourBits | colourIndex;
        const auto known = dictionary.find(key);
        if (known != dictionary.end()) {
            prefix = known->second;
            continue;
        }
        codes.put(prefix, bits);
        prefix = colourIndex;
        if (nextCode == codeLimit) {
            codes.put(clearCode, bits);
            dictionary.clear();
            bits = colourBits + 1;
            nextCode = endCode + 1;
            continue;
        }
        if (nextCode == 1U << bits) ++bits;
        dictionary[key] = nextCode++;
    }
    codes.put(prefix, bits);
    if (nextCode == 1U << bits && bits < 12) ++bits; // The reader has made one more code by then.
    codes.put(endCode, bits);
    codes.finish();
}

} // namespace

Data encodeGIF(std::span<const PictureCanvas> frames, int centiseconds) {
    const auto width = static_cast<unsigned>(frames.front().widthPixels());
    const auto height = static_cast<unsigned>(frames.front().heightPixels());
    Data bytes;
    append(bytes, "GIF89a");
    appendShort(bytes, width);
    appendShort(bytes, height);
    append(bytes, std::string_view("\xF7\0\0", 3)); // A global palette of 256 colours.
    appendPalette(bytes);
    append(bytes, std::string_view("\x21\xFF\x0BNETSCAPE2.0\x03\x01\0\0\0", 19)); // Repeat for ever.
    for (const PictureCanvas& frame : frames) {
        append(bytes, std::string_view("\x21\xF9\x04\x04", 4));
        appendShort(bytes, static_cast<unsigned>(centiseconds));
        append(bytes, std::string_view("\0\0\x2C\0\0\0\0", 7));
        appendShort(bytes, width);
        appendShort(bytes, height);
        bytes.push_back(0);
        appendCompressed(bytes, frame.pixels());
    }
    bytes.push_back(0x3B);
    return bytes;
}

} // namespace quillbook::sample
