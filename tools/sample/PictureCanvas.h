#pragma once

#include "core/records/ConversationSummary.h"

#include <cstdint>
#include <memory>
#include <vector>

// The names are Cairo's own.
using cairo_t = struct _cairo;                 // NOLINT(bugprone-reserved-identifier)
using cairo_surface_t = struct _cairo_surface; // NOLINT(bugprone-reserved-identifier)

namespace quillbook::sample {

struct Colour {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;
};

/// From 0xRRGGBB.
Colour colour(unsigned code, double alpha = 1);
Colour mixed(Colour one, Colour other, double part);

struct Point {
    double x = 0;
    double y = 0;
};

struct GradientStop {
    double offset = 0; ///< From 0 to 1.
    Colour colour;
};

/// A picture that is drawn on with filled shapes. Lengths are in units of a 1200 by 900 picture, whatever its
/// size. No text: fonts differ between machines.
class PictureCanvas {
public:
    static constexpr double width = 1200;
    static constexpr double height = 900;

    PictureCanvas(int widthPixels, int heightPixels);

    void rectangle(double x, double y, double w, double h, Colour fill);
    void verticalGradient(double top, double bottom, const std::vector<GradientStop>& stops);
    void ellipse(Point centre, double radiusX, double radiusY, Colour fill);
    void circle(Point centre, double radius, Colour fill) { ellipse(centre, radius, radius, fill); }
    /// Bright in the middle, transparent at the edge.
    void glow(Point centre, double radius, Colour inner);
    void shadedCircle(Point centre, double radius, Colour lit, Colour shaded);
    void ring(Point centre, double radius, double thickness, Colour line);
    void polygon(const std::vector<Point>& points, Colour fill);
    /// A closed curve through the points.
    void blob(const std::vector<Point>& points, Colour fill);
    void line(const std::vector<Point>& points, double thickness, Colour line);
    void curve(const std::vector<Point>& points, double thickness, Colour line);
    void roundedRectangle(double x, double y, double w, double h, double radius, Colour fill);
    /// What is drawn from now on is moved, turned (radians) and scaled; `restore` ends that.
    void place(Point origin, double scale, double angle = 0);
    void restore();
    /// What is drawn until `restore` shows only inside the rectangle.
    void clipTo(double x, double y, double w, double h);

    int widthPixels() const { return widthPixels_; }
    int heightPixels() const { return heightPixels_; }
    /// Rows of 0xAARRGGBB from the top, without gaps.
    std::vector<std::uint32_t> pixels() const;

private:
    struct SurfaceDeleter {
        void operator()(cairo_surface_t* surface) const;
    };
    struct ContextDeleter {
        void operator()(cairo_t* context) const;
    };

    void fillPath(Colour fill);
    void curvePath(const std::vector<Point>& points, bool isClosed);

    int widthPixels_;
    int heightPixels_;
    std::unique_ptr<cairo_surface_t, SurfaceDeleter> surface_;
    std::unique_ptr<cairo_t, ContextDeleter> context_;
};

} // namespace quillbook::sample
