#include "tools/sample/ImageEncoders.h"

#include <cmath>

#include <gmock/gmock.h>
#include <png.h>

namespace quillbook::sample {
namespace {

PictureCanvas checkeredPicture() {
    PictureCanvas canvas(64, 48);
    canvas.rectangle(0, 0, 1200, 900, colour(0xFF0000));
    canvas.rectangle(600, 0, 600, 900, colour(0x0000FF));
    return canvas;
}

TEST(PictureCanvas, givesPixelsWithoutGapsFromTheTop) {
    const auto pixels = checkeredPicture().pixels();
    ASSERT_EQ(pixels.size(), 64U * 48U);
    EXPECT_EQ(pixels.front(), 0xFFFF0000U);
    EXPECT_EQ(pixels.back(), 0xFF0000FFU);
}

TEST(EncodePNG, keepsEveryPixel) {
    const Data file = encodePNG(checkeredPicture());
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    ASSERT_NE(png_image_begin_read_from_memory(&image, file.data(), file.size()), 0);
    image.format = PNG_FORMAT_BGRA;
    std::vector<std::uint32_t> pixels(std::size_t{image.width} * image.height);
    ASSERT_NE(png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr), 0);
    EXPECT_EQ(pixels, checkeredPicture().pixels());
}

/// An LZW decoder of its own, straight from appendix F of GIF89a, for one frame.
std::vector<std::uint8_t> decodedFrame(const Data& file, std::size_t position, std::size_t pixelCount) {
    const unsigned colourBits = file.at(position++);
    Data stream;
    while (file.at(position) != 0) {
        const std::size_t length = file.at(position);
        for (std::size_t index = 1; index <= length; ++index)
            stream.push_back(file.at(position + index));
        position += length + 1;
    }
    const unsigned clearCode = 1U << colourBits;
    std::vector<std::vector<std::uint8_t>> table;
    unsigned bits = colourBits + 1;
    std::size_t bitPosition = 0;
    std::vector<std::uint8_t> pixels;
    std::vector<std::uint8_t> previous;
    while (pixels.size() <= pixelCount) {
        unsigned code = 0;
        for (unsigned bit = 0; bit < bits; ++bit, ++bitPosition) {
            code |= (stream.at(bitPosition / 8) >> (bitPosition % 8) & 1U) << bit;
        }
        if (code == clearCode) {
            table.clear();
            for (unsigned value = 0; value < clearCode + 2; ++value)
                table.push_back({static_cast<std::uint8_t>(value)});
            bits = colourBits + 1;
            previous.clear();
            continue;
        }
        if (code == clearCode + 1) return pixels;
        std::vector<std::uint8_t> entry = code < table.size() ? table[code] : previous;
        if (code >= table.size()) entry.push_back(previous.at(0));
        pixels.insert(pixels.end(), entry.begin(), entry.end());
        if (!previous.empty() && table.size() < 4096) {
            previous.push_back(entry.front());
            table.push_back(previous);
            if (table.size() == 1U << bits && bits < 12) ++bits;
        }
        previous = entry;
    }
    return pixels;
}

constexpr std::size_t firstFrameData = 6 + 7 + 768 + 19 + 8 + 10;

TEST(EncodeGIF, compressesManyCodesSoThatTheyComeBack) {
    PictureCanvas canvas(200, 150);
    for (int circle = 0; circle < 60; ++circle) {
        canvas.circle({std::fmod(circle * 173.0, 1200), std::fmod(circle * 91.0, 900)}, 40 + circle * 2,
                      colour(static_cast<unsigned>(circle) * 0x04A7D1U & 0xFFFFFFU));
    }
    const std::vector<PictureCanvas> frames = [&] {
        std::vector<PictureCanvas> one;
        one.push_back(std::move(canvas));
        return one;
    }();
    const Data file = encodeGIF(frames, 10);
    const auto indices = decodedFrame(file, firstFrameData, 200 * 150);
    const auto pixels = frames.front().pixels();
    ASSERT_EQ(indices.size(), pixels.size());
    for (std::size_t index = 0; index < pixels.size(); ++index) {
        const std::size_t palette = 13 + std::size_t{indices[index]} * 3;
        const int red = static_cast<int>(pixels[index] >> 16U & 0xFFU);
        ASSERT_LE(std::abs(red - file[palette]), 26)
            << index; // Six levels of red: never farther off than half a step.
    }
}

} // namespace
} // namespace quillbook::sample
