#include "shell/adapter/AvatarProvider.h"

#include <QPainter>
#include <algorithm>
#include <utility>

namespace quillbook {
namespace {

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

} // namespace

AvatarProvider::AvatarProvider(std::shared_ptr<const AvatarStore> store) : store_(std::move(store)) {}

QQuickImageResponse* AvatarProvider::requestImageResponse(const QString& key, const QSize& requestedSize) {
    return decoder_.decode([picture = store_->picture(key.toStdString())] { return picture; }, requestedSize,
                           &round);
}

} // namespace quillbook
