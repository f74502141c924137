#pragma once

#include <QQuickImageProvider>

namespace quillbook {

/// The symbols of the screens, drawn in one colour: "image://glyph/SYMBOL/AARRGGBB" or ".../RRGGBB". The
/// width and height asked for (`sourceSize`) count device pixels; without them a glyph has the 24 by 24 of
/// its grid. The result is premultiplied ARGB32. An unknown symbol or colour gives a null image and a warning
/// in the log. Safe to call from any thread.
class GlyphProvider final : public QQuickImageProvider {
public:
    GlyphProvider();
    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;
};

} // namespace quillbook
