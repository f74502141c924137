#include "shell/adapter/PictureDecoder.h"

#include <QBuffer>
#include <QByteArray>
#include <QImageReader>
#include <algorithm>
#include <utility>

namespace quillbook {
namespace {

constexpr int defaultSide = 64;
constexpr int longestDecodedSide = 1'024;
constexpr int longestStoredSide = 16'384;
constexpr int megabytesWhileDecoding = 128;

/// By their signatures; empty for anything else.
QByteArray formatOf(const QByteArray& bytes) {
    if (bytes.startsWith("\x89PNG\r\n\x1A\n")) return "png";
    if (bytes.startsWith("\xFF\xD8\xFF")) return "jpeg";
    if (bytes.startsWith("GIF87a") || bytes.startsWith("GIF89a")) return "gif";
    if (bytes.startsWith("RIFF") && bytes.mid(8, 4) == "WEBP") return "webp";
    return {};
}

/// The whole picture, in the least size of which a square of `side` can be cut.
QSize scaledSize(const QSize& stored, int side) {
    return stored.scaled(side, side, Qt::KeepAspectRatioByExpanding).boundedTo(stored).expandedTo({1, 1});
}

QImage decoded(const Data& picture, int side) {
    QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(picture.data()),
                                               static_cast<qsizetype>(picture.size()));
    const QByteArray format = formatOf(bytes);
    if (format.isEmpty()) return {};
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer, format);
    reader.setAutoDetectImageFormat(false);
    reader.setAutoTransform(true);
    const QSize stored = reader.size();
    if (!stored.isValid() || std::max(stored.width(), stored.height()) > longestStoredSide) return {};
    reader.setScaledSize(scaledSize(stored, side));
    return reader.read();
}

class PictureResponse final : public QQuickImageResponse {
public:
    QQuickTextureFactory* textureFactory() const override {
        return QQuickTextureFactory::textureFactoryForImage(image_);
    }
    QString errorString() const override {
        return image_.isNull() ? QStringLiteral("This is no picture that can be shown.") : QString();
    }
    /// From the decoding thread; nobody reads before `finished`.
    void deliver(QImage image) {
        image_ = std::move(image);
        Q_EMIT finished();
    }

private:
    QImage image_;
};

} // namespace

PictureDecoder::PictureDecoder() {
    QImageReader::setAllocationLimit(megabytesWhileDecoding); // Of all readers; not safe in their threads.
    threads_.setMaxThreadCount(2);
}

PictureDecoder::~PictureDecoder() {
    threads_.waitForDone();
}

QQuickImageResponse* PictureDecoder::decode(Reading read, const QSize& requestedSize, Shaping shape) {
    auto* response = new PictureResponse;
    const int wanted =
        std::clamp(std::max(requestedSize.width(), requestedSize.height()), 0, longestDecodedSide);
    const int side = wanted > 0 ? wanted : defaultSide;
    threads_.start([response, read = std::move(read), shape = std::move(shape), side] {
        const auto picture = read();
        QImage image = picture ? decoded(*picture, side) : QImage();
        response->deliver(shape && !image.isNull() ? shape(image) : std::move(image));
    });
    return response;
}

} // namespace quillbook
