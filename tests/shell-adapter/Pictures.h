#pragma once

#include "core/records/ConversationSummary.h"

#include <QBuffer>
#include <QByteArray>
#include <QColor>
#include <QImage>
#include <QPainter>
#include <QQuickAsyncImageProvider>
#include <cstdint>
#include <memory>
#include <utility>

#include <gtest/gtest.h>

namespace quillbook::test {

struct Decoded {
    QImage image;
    QString error;
};

/// What a provider makes of a key. Its end waits for the decoding, so everything is there when this returns.
template <typename Provider>
Decoded decodedBy(std::unique_ptr<Provider> provider, const QString& key, QSize size) {
    const std::unique_ptr<QQuickImageResponse> response(provider->requestImageResponse(key, size));
    provider.reset();
    const std::unique_ptr<QQuickTextureFactory> texture(response->textureFactory());
    return {texture ? texture->image() : QImage(), response->errorString()};
}

inline Data dataOf(const QByteArray& bytes) {
    return {bytes.begin(), bytes.end()};
}

inline QByteArray encoded(const QImage& image, const char* format) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(image.save(&buffer, format, 90));
    return bytes;
}

/// Red on the left, blue on the right.
inline QImage halves(int width = 100, int height = 100) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::red);
    QPainter(&image).fillRect(width / 2, 0, width - width / 2, height, Qt::blue);
    return image;
}

inline bool isReddish(QColor color) {
    return color.red() > 200 && color.blue() < 60;
}
inline bool isBluish(QColor color) {
    return color.blue() > 200 && color.red() < 60;
}

inline std::uint32_t crc(const QByteArray& bytes) {
    std::uint32_t sum = 0xFFFFFFFF;
    for (const char byte : bytes) {
        sum ^= static_cast<std::uint8_t>(byte);
        for (int bit = 0; bit < 8; ++bit)
            sum = (sum >> 1) ^ ((sum & 1) != 0 ? 0xEDB88320U : 0U);
    }
    return ~sum;
}

inline QByteArray bigEndian(std::uint32_t number) {
    QByteArray bytes;
    for (const int shift : {24, 16, 8, 0})
        bytes += static_cast<char>(number >> shift);
    return bytes;
}

/// A picture of 100 by 100 that claims to be of another size (PNG, 3rd edition, 11.2.1), its checksum right.
inline Data pngThatClaims(std::uint32_t width, std::uint32_t height) {
    QByteArray bytes = encoded(halves(), "PNG");
    const QByteArray header = "IHDR" + bigEndian(width) + bigEndian(height) + bytes.mid(24, 5);
    bytes.replace(12, 21, header + bigEndian(crc(header)));
    return dataOf(bytes);
}

/// One white pixel, GIF89a.
inline QByteArray whiteGIF() {
    return QByteArray::fromHex("47494638396101000100800000ffffff00000021f90401000000002c"
                               "00000000010001000002024401003b");
}

/// Turned as cameras mark it: Exif 2.3, tag 0x0112.
inline Data jpegWithOrientation(char orientation) {
    QByteArray exif =
        QByteArray::fromHex("ffe1002245786966000049492a0008000000010012010300010000000000000000000000");
    exif[28] = orientation;
    QByteArray bytes = encoded(halves(), "JPEG");
    bytes.insert(2, exif);
    return dataOf(bytes);
}

} // namespace quillbook::test
