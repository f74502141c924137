#include "shell/adapter/AvatarProvider.h"

#include <QBuffer>
#include <QImageReader>
#include <QPainter>
#include <algorithm>
#include <utility>

namespace quillbook {
namespace {

constexpr int defaultSide = 64;
constexpr int longestDecodedSide = 1'024;
constexpr int longestStoredSide = 16'384;
constexpr int megabytesWhileDecoding = 128;

/// The whole picture, in the least size of which a square of `side` can be cut.
QSize scaledSize(const QSize& stored, int side) {
    return stored.scaled(side, side, Qt::KeepAspectRatioByExpanding).boundedTo(stored);
}

/// The greatest circle in the middle.
QImage round(const QImage& image) {
    const int side = std::min(image.width(), image.height());
    QImage circle(side, side, QImage::Format_ARGB32_Premultiplied);
    circle.fill(Qt::transparent);
    QPainter painter(&circle);
    painter.setRenderHint(QPainter::Antialiasing);
    QBrush brush(image);
    brush.setTransform(QTransform::fromTranslate((side - image.width()) / 2, (side - image.height()) / 2));
    painter.setBrush(brush);
    painter.setPen(Qt::NoPen);
    painter.drawEllipse(0, 0, side, side);
    return circle;
}

QImage decoded(const Data& picture, int side) {
    QByteArray bytes(reinterpret_cast<const char*>(picture.data()), static_cast<qsizetype>(picture.size()));
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setAutoTransform(true);
    const QByteArray format = reader.format();
    if (format != "png" && format != "jpeg" && format != "gif" && format != "webp") return {};
    const QSize stored = reader.size();
    if (!stored.isValid() || std::max(stored.width(), stored.height()) > longestStoredSide) return {};
    reader.setScaledSize(scaledSize(stored, side).expandedTo({1, 1}));
    const QImage image = reader.read();
    return image.isNull() ? image : round(image);
}

class AvatarResponse final : public QQuickImageResponse {
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

AvatarProvider::AvatarProvider(std::shared_ptr<const AvatarStore> store) : store_(std::move(store)) {
    QImageReader::setAllocationLimit(megabytesWhileDecoding); // Of all readers; not safe in their threads.
    decoders_.setMaxThreadCount(2);
}

AvatarProvider::~AvatarProvider() {
    decoders_.waitForDone();
}

QQuickImageResponse* AvatarProvider::requestImageResponse(const QString& key, const QSize& requestedSize) {
    auto* response = new AvatarResponse;
    const int side =
        std::clamp(std::max(requestedSize.width(), requestedSize.height()), 0, longestDecodedSide);
    decoders_.start([response, picture = store_->picture(key.toStdString()), side] {
        response->deliver(picture ? decoded(*picture, side > 0 ? side : defaultSide) : QImage());
    });
    return response;
}

} // namespace quillbook
