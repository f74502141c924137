#include "tools/sample/MediaPictures.h"
#include "tools/sample/PictureElements.h"

#include <cmath>
#include <map>

namespace quillbook::sample {
namespace {

using Canvas = PictureCanvas;
using Random = DeterministicRandom;

void paintApples(Canvas& canvas, Random& random) {
    canvas.verticalGradient(0, 900, {{0, colour(0x8CC7E8)}, {0.7, colour(0xEAF6E3)}, {1, colour(0xB4D78E)}});
    drawRidge(canvas, random, 700, 30, 900, colour(0x86B95D));
    drawLeafTree(canvas, random, {600, 850}, 780, colour(0x5B9A45));
    for (const Point& at : {Point{420, 300}, Point{560, 180}, Point{720, 330}, Point{640, 430}}) {
        canvas.shadedCircle(at, 36, colour(0xFF8A75), colour(0xB5171E));
        canvas.curve({{at.x, at.y - 32}, {at.x + 6, at.y - 50}}, 5, colour(0x5A3A1E));
    }
    canvas.line({{880, 860}, {960, 330}}, 14, colour(0xC99A5B));
    canvas.line({{1000, 860}, {1030, 330}}, 14, colour(0xC99A5B));
    for (int rung = 0; rung < 8; ++rung)
        canvas.line({{888 + rung * 10.0, 810 - rung * 62.0}, {1002 + rung * 4.0, 810 - rung * 62.0}}, 10,
                    colour(0xB5824A));
}

void paintSunflowers(Canvas& canvas, Random& random) {
    canvas.verticalGradient(0, 900, {{0, colour(0x4AA3DF)}, {0.6, colour(0xDDF2FB)}, {1, colour(0xF6E7A1)}});
    drawCloud(canvas, random, {860, 150}, 80, {1, 1, 1, 0.9});
    for (int row = 0; row < 4; ++row) {
        const double size = 34 + row * 32.0;
        for (double x = random.fraction(-40, 0); x < 1240; x += size * 2.1) {
            const Point head = {x + random.fraction(-14, 14), 430 + row * 105.0 + random.fraction(-26, 26)};
            canvas.curve({{head.x + 8, 920}, {head.x - 6, head.y + size * 2}, head}, size * 0.16,
                         colour(0x4C7F35));
            canvas.ellipse({head.x + size * 0.7, head.y + size * 1.7}, size * 0.62, size * 0.26,
                           colour(0x5E9A42));
            drawFlower(canvas, head, size, 16, colour(0xFFC300), colour(0x6B3E12));
        }
    }
}

void paintBlossom(Canvas& canvas, Random& random) {
    canvas.verticalGradient(0, 900, {{0, colour(0x8EC9F0)}, {1, colour(0xF6F1FA)}});
    canvas.polygon({{240, 700}, {600, 330}, {960, 700}}, colour(0x9DB2D6));
    canvas.polygon({{496, 437}, {600, 330}, {704, 437}, {660, 420}, {622, 462}, {580, 424}, {540, 455}},
                   colour(0xFFFFFF));
    drawWater(canvas, random, 690, 900, {colour(0xC9DDF2), colour(0x7FA8D1), colour(0xFFFFFF)});
    canvas.curve({{1240, 420}, {980, 260}, {700, 190}, {430, 210}}, 30, colour(0x5A3A32));
    canvas.curve({{1000, 270}, {860, 120}, {760, 60}}, 16, colour(0x5A3A32));
    canvas.curve({{860, 225}, {720, 320}, {600, 350}}, 13, colour(0x5A3A32));
    for (int flower = 0; flower < 130; ++flower) {
        const double along = random.fraction();
        const double spread = random.fraction(-95, 95);
        const Point at = {1200 - along * 800, 400 - along * 250 + std::pow(along, 3) * 60 + spread};
        const double size = random.fraction(14, 30);
        const Colour petal = mixed(colour(0xFFC8DD), colour(0xFFFFFF), random.fraction(0, 0.6));
        drawFlower(canvas, at, size, 5, petal, colour(0xE56B8C));
    }
    for (int petal = 0; petal < 50; ++petal)
        canvas.ellipse({random.fraction(0, 1200), random.fraction(350, 880)}, 9, 5, colour(0xFFC8DD, 0.9));
}

} // namespace

Painter gardenPainter(std::string_view name) {
    static const std::map<std::string_view, Painter> painters = {
        {"apples", paintApples}, {"sunflowers", paintSunflowers}, {"blossom", paintBlossom}};
    const auto painter = painters.find(name);
    return painter == painters.end() ? nullptr : painter->second;
}

} // namespace quillbook::sample
