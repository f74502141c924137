#include "tools/sample/PictureCanvas.h"

#include "tools/writing/SampleError.h"

#include <cstring>

#include <cairo.h>

namespace quillbook::sample {
namespace {

constexpr double fullTurn = 6.283185307179586;

struct PatternDeleter {
    void operator()(cairo_pattern_t* pattern) const { cairo_pattern_destroy(pattern); }
};
using Pattern = std::unique_ptr<cairo_pattern_t, PatternDeleter>;

void addStop(const Pattern& pattern, double offset, Colour stop) {
    cairo_pattern_add_color_stop_rgba(pattern.get(), offset, stop.red, stop.green, stop.blue, stop.alpha);
}

} // namespace

Colour colour(unsigned code, double alpha) {
    return {(code >> 16U & 0xFFU) / 255.0, (code >> 8U & 0xFFU) / 255.0, (code & 0xFFU) / 255.0, alpha};
}

Colour mixed(Colour one, Colour other, double part) {
    const auto between = [part](double from, double to) { return from + (to - from) * part; };
    return {between(one.red, other.red), between(one.green, other.green), between(one.blue, other.blue),
            between(one.alpha, other.alpha)};
}

void PictureCanvas::SurfaceDeleter::operator()(cairo_surface_t* surface) const {
    cairo_surface_destroy(surface);
}
void PictureCanvas::ContextDeleter::operator()(cairo_t* context) const {
    cairo_destroy(context);
}

PictureCanvas::PictureCanvas(int widthPixels, int heightPixels)
    : widthPixels_(widthPixels), heightPixels_(heightPixels),
      surface_(cairo_image_surface_create(CAIRO_FORMAT_RGB24, widthPixels, heightPixels)),
      context_(cairo_create(surface_.get())) {
    if (cairo_status(context_.get()) != CAIRO_STATUS_SUCCESS) {
        throw SampleError(SampleError::Reason::encoderFailed,
                          cairo_status_to_string(cairo_status(context_.get())));
    }
    cairo_scale(context_.get(), widthPixels / width, heightPixels / height);
}

void PictureCanvas::fillPath(Colour fill) {
    cairo_set_source_rgba(context_.get(), fill.red, fill.green, fill.blue, fill.alpha);
    cairo_fill(context_.get());
}

void PictureCanvas::rectangle(double x, double y, double w, double h, Colour fill) {
    cairo_rectangle(context_.get(), x, y, w, h);
    fillPath(fill);
}

void PictureCanvas::verticalGradient(double top, double bottom, const std::vector<GradientStop>& stops) {
    const Pattern pattern(cairo_pattern_create_linear(0, top, 0, bottom));
    for (const GradientStop& stop : stops)
        addStop(pattern, stop.offset, stop.colour);
    cairo_rectangle(context_.get(), -width, top, 3 * width, bottom - top);
    cairo_set_source(context_.get(), pattern.get());
    cairo_fill(context_.get());
}

void PictureCanvas::ellipse(Point centre, double radiusX, double radiusY, Colour fill) {
    cairo_save(context_.get());
    cairo_translate(context_.get(), centre.x, centre.y);
    cairo_scale(context_.get(), radiusX, radiusY);
    cairo_arc(context_.get(), 0, 0, 1, 0, fullTurn);
    cairo_restore(context_.get());
    fillPath(fill);
}

void PictureCanvas::glow(Point centre, double radius, Colour inner) {
    const Pattern pattern(cairo_pattern_create_radial(centre.x, centre.y, 0, centre.x, centre.y, radius));
    addStop(pattern, 0, inner);
    addStop(pattern, 0.4, {inner.red, inner.green, inner.blue, inner.alpha * 0.45});
    addStop(pattern, 1, {inner.red, inner.green, inner.blue, 0});
    cairo_arc(context_.get(), centre.x, centre.y, radius, 0, fullTurn);
    cairo_set_source(context_.get(), pattern.get());
    cairo_fill(context_.get());
}

void PictureCanvas::shadedCircle(Point centre, double radius, Colour lit, Colour shaded) {
    const Pattern pattern(cairo_pattern_create_radial(centre.x - radius * 0.35, centre.y - radius * 0.4,
                                                      radius * 0.1, centre.x, centre.y, radius));
    addStop(pattern, 0, lit);
    addStop(pattern, 1, shaded);
    cairo_arc(context_.get(), centre.x, centre.y, radius, 0, fullTurn);
    cairo_set_source(context_.get(), pattern.get());
    cairo_fill(context_.get());
}

void PictureCanvas::ring(Point centre, double radius, double thickness, Colour line) {
    cairo_new_path(context_.get());
    cairo_arc(context_.get(), centre.x, centre.y, radius, 0, fullTurn);
    cairo_set_source_rgba(context_.get(), line.red, line.green, line.blue, line.alpha);
    cairo_set_line_width(context_.get(), thickness);
    cairo_stroke(context_.get());
}

void PictureCanvas::polygon(const std::vector<Point>& points, Colour fill) {
    for (const Point& point : points)
        cairo_line_to(context_.get(), point.x, point.y);
    cairo_close_path(context_.get());
    fillPath(fill);
}

/// A Catmull-Rom curve: each piece is a Bézier curve whose handles follow the neighbours.
void PictureCanvas::curvePath(const std::vector<Point>& points, bool isClosed) {
    const auto count = static_cast<std::ptrdiff_t>(points.size());
    const auto at = [&](std::ptrdiff_t index) {
        if (isClosed) return points[static_cast<std::size_t>((index + count) % count)];
        return points[static_cast<std::size_t>(index < 0 ? 0 : (index >= count ? count - 1 : index))];
    };
    cairo_new_path(context_.get());
    cairo_move_to(context_.get(), points.front().x, points.front().y);
    for (std::ptrdiff_t index = 0; index < (isClosed ? count : count - 1); ++index) {
        const Point before = at(index - 1);
        const Point from = at(index);
        const Point to = at(index + 1);
        const Point after = at(index + 2);
        cairo_curve_to(context_.get(), from.x + (to.x - before.x) / 6, from.y + (to.y - before.y) / 6,
                       to.x - (after.x - from.x) / 6, to.y - (after.y - from.y) / 6, to.x, to.y);
    }
}

void PictureCanvas::blob(const std::vector<Point>& points, Colour fill) {
    curvePath(points, true);
    fillPath(fill);
}

void PictureCanvas::line(const std::vector<Point>& points, double thickness, Colour line) {
    cairo_new_path(context_.get());
    for (const Point& point : points)
        cairo_line_to(context_.get(), point.x, point.y);
    cairo_set_line_cap(context_.get(), CAIRO_LINE_CAP_ROUND);
    cairo_set_line_join(context_.get(), CAIRO_LINE_JOIN_ROUND);
    cairo_set_line_width(context_.get(), thickness);
    cairo_set_source_rgba(context_.get(), line.red, line.green, line.blue, line.alpha);
    cairo_stroke(context_.get());
}

void PictureCanvas::curve(const std::vector<Point>& points, double thickness, Colour line) {
    curvePath(points, false);
    cairo_set_line_cap(context_.get(), CAIRO_LINE_CAP_ROUND);
    cairo_set_line_width(context_.get(), thickness);
    cairo_set_source_rgba(context_.get(), line.red, line.green, line.blue, line.alpha);
    cairo_stroke(context_.get());
}

void PictureCanvas::roundedRectangle(double x, double y, double w, double h, double radius, Colour fill) {
    const double quarter = fullTurn / 4;
    cairo_new_path(context_.get());
    cairo_arc(context_.get(), x + w - radius, y + radius, radius, -quarter, 0);
    cairo_arc(context_.get(), x + w - radius, y + h - radius, radius, 0, quarter);
    cairo_arc(context_.get(), x + radius, y + h - radius, radius, quarter, 2 * quarter);
    cairo_arc(context_.get(), x + radius, y + radius, radius, 2 * quarter, 3 * quarter);
    cairo_close_path(context_.get());
    fillPath(fill);
}

void PictureCanvas::place(Point origin, double scale, double angle) {
    cairo_save(context_.get());
    cairo_translate(context_.get(), origin.x, origin.y);
    cairo_rotate(context_.get(), angle);
    cairo_scale(context_.get(), scale, scale);
}

void PictureCanvas::restore() {
    cairo_restore(context_.get());
}

void PictureCanvas::clipTo(double x, double y, double w, double h) {
    cairo_save(context_.get());
    cairo_rectangle(context_.get(), x, y, w, h);
    cairo_clip(context_.get());
}

std::vector<std::uint32_t> PictureCanvas::pixels() const {
    cairo_surface_flush(surface_.get());
    const unsigned char* data = cairo_image_surface_get_data(surface_.get());
    const auto stride = static_cast<std::size_t>(cairo_image_surface_get_stride(surface_.get()));
    const auto columns = static_cast<std::size_t>(widthPixels_);
    const auto rows = static_cast<std::size_t>(heightPixels_);
    std::vector<std::uint32_t> result(columns * rows);
    for (std::size_t row = 0; row < rows; ++row) {
        std::memcpy(result.data() + row * columns, data + row * stride, columns * sizeof(std::uint32_t));
    }
    for (std::uint32_t& pixel : result)
        pixel |= 0xFF000000U;
    return result;
}

} // namespace quillbook::sample
