#include "tools/sample/MediaPictures.h"
#include "tools/sample/PictureElements.h"

#include <cmath>
#include <map>

namespace quillbook::sample {
namespace {

using Canvas = PictureCanvas;
using Random = DeterministicRandom;

void drawSkylineRow(Canvas& canvas, Random& random, double foot, double tallest, Colour wall, Colour light) {
    for (double x = -10; x < 1200;) {
        const double width = random.fraction(50, 110);
        const double height = random.fraction(tallest * 0.35, tallest);
        canvas.rectangle(x, foot - height, width, height, wall);
        if (random.oneIn(3))
            canvas.polygon(
                {{x, foot - height}, {x + width / 2, foot - height - 40}, {x + width, foot - height}}, wall);
        for (double y = foot - height + 14; y < foot - 20; y += 26) {
            for (double column = x + 10; column < x + width - 14; column += 20) {
                if (random.oneIn(2)) canvas.rectangle(column, y, 10, 14, light);
            }
        }
        x += width + random.fraction(0, 8);
    }
}

void paintSkyline(Canvas& canvas, Random& random) {
    canvas.verticalGradient(0, 620, {{0, colour(0x1B1F4B)}, {0.6, colour(0x8A4F7D)}, {1, colour(0xF7A072)}});
    drawSkylineRow(canvas, random, 620, 250, colour(0x4B3F72), colour(0xFFD98A, 0.5));
    drawSkylineRow(canvas, random, 640, 330, colour(0x231F45), colour(0xFFD166, 0.95));
    drawWater(canvas, random, 638, 900, {colour(0x8A4F7D), colour(0x15163A), colour(0xFFD166)});
    for (int lantern = 0; lantern < 24; ++lantern) {
        const double x = 25 + lantern * 50.0;
        canvas.glow({x, 150 + 26 * std::sin(lantern * 0.8)}, 34, colour(0xFFE08A, 0.9));
    }
}

void paintRiver(Canvas& canvas, Random& random) {
    canvas.verticalGradient(0, 520, {{0, colour(0x4FA3E0)}, {1, colour(0xE8F6FC)}});
    drawRidge(canvas, random, 420, 50, 560, colour(0x9CBFA8));
    drawSkylineRow(canvas, random, 540, 150, colour(0x9FB4C8), colour(0xE8F1F8, 0.8));
    drawWater(canvas, random, 535, 760, {colour(0xA8D5E8), colour(0x3F86B0), colour(0xFFFFFF)});
    for (int arch = 0; arch < 6; ++arch)
        canvas.ring({100 + arch * 205.0, 610}, 92, 14, colour(0x7D8A96));
    canvas.rectangle(0, 500, 1200, 26, colour(0x8C99A5));
    canvas.rectangle(0, 606, 1200, 120, colour(0x3F86B0, 0.65));
    canvas.verticalGradient(745, 900, {{0, colour(0x8CC26E)}, {1, colour(0x5E9A4C)}});
    canvas.rectangle(0, 800, 1200, 44, colour(0xD8D2C4));
    canvas.line({{0, 822}, {1200, 822}}, 3, colour(0xFFFFFF));
}

void paintMoon(Canvas& canvas, Random& random) {
    canvas.verticalGradient(0, 900, {{0, colour(0x0A1434)}, {1, colour(0x33497A)}});
    drawStars(canvas, random, 130, 700);
    canvas.glow({720, 330}, 420, colour(0xFFF1C9, 0.55));
    canvas.shadedCircle({720, 330}, 150, colour(0xFFF9E5), colour(0xF0DCA4));
    for (int crater = 0; crater < 7; ++crater) {
        const Point at = {random.fraction(640, 800), random.fraction(250, 410)};
        canvas.circle(at, random.fraction(8, 24), colour(0xD9C48A, 0.35));
    }
    for (int roof = 0; roof < 4; ++roof) {
        const double x = -60 + roof * 340.0;
        canvas.rectangle(x + 40, 760, 250, 200, colour(0x141B33));
        canvas.blob({{x, 760}, {x + 70, 715}, {x + 165, 690}, {x + 260, 715}, {x + 330, 760}, {x + 165, 752}},
                    colour(0x0B1024));
        canvas.rectangle(x + 140, 800, 50, 60, colour(0xFFC65C, 0.9));
    }
    canvas.curve({{-20, 80}, {140, 130}, {250, 90}, {330, 150}}, 9, colour(0x1A1420));
    for (int leaf = 0; leaf < 14; ++leaf)
        canvas.circle({random.fraction(0, 340), random.fraction(70, 170)}, 12, colour(0x3B2A4A));
}

void paintWindow(Canvas& canvas, Random& random) {
    canvas.verticalGradient(0, 900, {{0, colour(0xE9DCCB)}, {1, colour(0xCDB79B)}});
    canvas.roundedRectangle(150, 50, 900, 660, 10, colour(0xFFFFFF));
    canvas.clipTo(185, 85, 830, 590);
    canvas.verticalGradient(85, 675, {{0, colour(0x5FA8DC)}, {1, colour(0xF8EFDC)}});
    drawCloud(canvas, random, {400, 210}, 60, {1, 1, 1, 0.85});
    for (int roof = 0; roof < 12; ++roof) {
        const double x = 130 + roof * 80.0 + random.fraction(-14, 14);
        const double top = random.fraction(430, 560);
        canvas.rectangle(x, top, 110, 300, mixed(colour(0xF0E2CF), colour(0xD9A98C), random.fraction()));
        canvas.polygon({{x - 10, top}, {x + 55, top - 70}, {x + 120, top}},
                       mixed(colour(0xB5573F), colour(0x8A3B2E), random.fraction()));
    }
    canvas.rectangle(700, 300, 84, 380, colour(0xE8D6BC));
    canvas.polygon({{690, 300}, {742, 130}, {794, 300}}, colour(0x5E7F86));
    canvas.circle({742, 350}, 22, colour(0xFFFFFF));
    canvas.restore();
    canvas.rectangle(590, 85, 20, 590, colour(0xFFFFFF));
    canvas.rectangle(90, 710, 1020, 44, colour(0xFFFFFF));
    canvas.polygon({{240, 620}, {370, 620}, {350, 712}, {260, 712}}, colour(0xC1663F));
    for (int leaf = -3; leaf <= 3; ++leaf)
        canvas.curve({{305, 624}, {305 + leaf * 26.0, 540}, {305 + leaf * 54.0, 500 + std::abs(leaf) * 22.0}},
                     15, colour(0x4E8A4B));
}

void paintLamps(Canvas& canvas, Random& random) {
    canvas.verticalGradient(0, 900, {{0, colour(0x1A1033)}, {0.6, colour(0x3A1F3F)}, {1, colour(0x2A160E)}});
    drawStars(canvas, random, 90, 330);
    for (int row = 0; row < 4; ++row) {
        const double size = 0.5 + row * 0.28;
        const int count = 9 - row * 2;
        for (int lamp = 0; lamp < count; ++lamp) {
            canvas.place({1200.0 * (lamp + 0.5) / count, 430 + row * 125.0}, size);
            canvas.glow({0, -40}, 170, colour(0xFFB347, 0.75));
            canvas.blob({{-80, 0}, {-50, 44}, {0, 56}, {50, 44}, {80, 0}, {0, 14}}, colour(0xB5562B));
            canvas.ellipse({0, 2}, 76, 14, colour(0x6B2F14));
            canvas.blob({{-14, -6}, {0, -74}, {14, -6}, {0, 6}}, colour(0xFFC23D));
            canvas.blob({{-7, -6}, {0, -44}, {7, -6}, {0, 2}}, colour(0xFFF6C9));
            canvas.restore();
        }
    }
}

} // namespace

Painter townPainter(std::string_view name) {
    static const std::map<std::string_view, Painter> painters = {{"skyline", paintSkyline},
                                                                 {"river", paintRiver},
                                                                 {"moon", paintMoon},
                                                                 {"window", paintWindow},
                                                                 {"lamps", paintLamps}};
    const auto painter = painters.find(name);
    return painter == painters.end() ? nullptr : painter->second;
}

} // namespace quillbook::sample
