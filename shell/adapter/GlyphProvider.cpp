#include "shell/adapter/GlyphProvider.h"

#include <QColor>
#include <QFile>
#include <QPainter>
#include <QSvgRenderer>
#include <QtDebug>
#include <algorithm>
#include <optional>

namespace quillbook {
namespace {

constexpr int grid = 24;
constexpr int largestSide = 4096;

/// QML writes an opaque color with six digits, any other with eight, alpha first.
std::optional<QColor> readColor(const QString& digits) {
    if (digits.size() != 6 && digits.size() != 8) return std::nullopt;
    const QColor color('#' + digits);
    return color.isValid() ? std::optional(color) : std::nullopt;
}

QByteArray readGlyph(const QString& symbol) {
    if (symbol.isEmpty() || symbol.contains('/')) return {};
    QFile file(":/quillbook/glyphs/" + symbol + ".svg");
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// A side that was not asked for follows the other.
QSize pixelSize(const QSize& requested) {
    const int width = requested.width() > 0 ? requested.width() : requested.height();
    const int height = requested.height() > 0 ? requested.height() : requested.width();
    if (width <= 0) return {grid, grid};
    return {std::min(width, largestSide), std::min(height, largestSide)};
}

/// Drawn opaque and made translucent as a whole, so that strokes that cross do not show through each other.
QImage drawGlyph(QByteArray svg, const QColor& color, const QSize& size) {
    svg.replace("currentColor", color.name(QColor::HexRgb).toLatin1());
    QSvgRenderer renderer(svg);
    if (!renderer.isValid()) return {};
    renderer.setAspectRatioMode(Qt::KeepAspectRatio);
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter);
    if (color.alpha() < 255) {
        painter.resetTransform();
        painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
        painter.fillRect(image.rect(), QColor(0, 0, 0, color.alpha()));
    }
    painter.end();
    return image;
}

} // namespace

GlyphProvider::GlyphProvider() : QQuickImageProvider(QQuickImageProvider::Image) {}

QImage GlyphProvider::requestImage(const QString& id, QSize* size, const QSize& requestedSize) {
    const qsizetype slash = id.lastIndexOf('/');
    const std::optional<QColor> color = readColor(id.mid(slash + 1));
    const QByteArray svg = readGlyph(id.left(std::max<qsizetype>(slash, 0)));
    QImage image;
    if (color && !svg.isEmpty()) image = drawGlyph(svg, *color, pixelSize(requestedSize));
    if (image.isNull()) qWarning("No glyph can be drawn for \"%s\".", qUtf8Printable(id));
    if (size != nullptr) *size = image.size();
    return image;
}

} // namespace quillbook
