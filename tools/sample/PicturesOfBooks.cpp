#include "tools/sample/MediaPictures.h"
#include "tools/sample/PictureElements.h"

#include <array>
#include <map>

namespace quillbook::sample {
namespace {

using Canvas = PictureCanvas;
using Random = DeterministicRandom;

/// Another picture, small, in the rectangle that has its upper left corner at `corner`.
void drawPrint(Canvas& canvas, Random& random, Point corner, double w, double h, std::string_view picture) {
    canvas.rectangle(corner.x - 10, corner.y - 10, w + 20, h + 20, colour(0xFFFFFF));
    canvas.clipTo(corner.x, corner.y, w, h);
    canvas.place({corner.x, corner.y - 15}, w / PictureCanvas::width);
    if (const Painter painter = painterNamed(picture)) painter(canvas, random);
    canvas.restore();
    canvas.restore();
}

void drawPhotoBook(Canvas& canvas, Random& random, Colour cover, std::string_view picture) {
    drawTable(canvas, colour(0xEDE0D4), colour(0xB08968));
    canvas.place({600, 460}, 1, -0.05);
    canvas.roundedRectangle(-382, -292, 780, 610, 14, colour(0x1E1410, 0.3));
    canvas.roundedRectangle(-400, -310, 780, 610, 14, cover);
    canvas.rectangle(-400, -310, 46, 610, mixed(cover, colour(0x000000), 0.25));
    drawPrint(canvas, random, {-276, -226}, 572, 372, picture);
    canvas.curve({{-110, 220}, {-60, 200}, {10, 226}, {60, 204}, {130, 222}}, 7, colour(0xF7E7CE));
    canvas.restore();
}

void paintCoverOne(Canvas& canvas, Random& random) {
    drawPhotoBook(canvas, random, colour(0x2F5D62), "lakeDawn");
}

void paintCoverTwo(Canvas& canvas, Random& random) {
    drawPhotoBook(canvas, random, colour(0x9B2226), "meadow");
}

void paintAlbum(Canvas& canvas, Random& random) {
    drawTable(canvas, colour(0xD8E2DC), colour(0x9C6644));
    canvas.roundedRectangle(90, 170, 1020, 620, 18, colour(0x2F5D62));
    canvas.rectangle(115, 190, 480, 580, colour(0xFBF7EF));
    canvas.rectangle(605, 190, 480, 580, colour(0xFBF7EF));
    static constexpr std::array<std::string_view, 4> pictures = {"sunset", "boat", "forest", "nightSky"};
    for (std::size_t index = 0; index < pictures.size(); ++index) {
        const Point corner = {index < 2 ? 160.0 : 650.0, index % 2 == 0 ? 225.0 : 500.0};
        drawPrint(canvas, random, corner, 390, 240, pictures[index]);
    }
}

} // namespace

Painter bookPainter(std::string_view name) {
    static const std::map<std::string_view, Painter> painters = {
        {"coverOne", paintCoverOne}, {"coverTwo", paintCoverTwo}, {"album", paintAlbum}};
    const auto painter = painters.find(name);
    return painter == painters.end() ? nullptr : painter->second;
}

} // namespace quillbook::sample
