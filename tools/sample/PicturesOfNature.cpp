#include "tools/sample/MediaPictures.h"
#include "tools/sample/PictureElements.h"

#include <cmath>
#include <map>

namespace quillbook::sample {
namespace {

using Canvas = PictureCanvas;
using Random = DeterministicRandom;

constexpr double fullTurn = 6.283185307179586;

void paintForest(Canvas& canvas, Random& random) {
    canvas.verticalGradient(0, 900, {{0, colour(0xE9F5D8)}, {0.5, colour(0xA9CF8E)}, {1, colour(0x4F7A43)}});
    canvas.glow({640, 230}, 420, colour(0xFFFBE0));
    for (int layer = 0; layer < 4; ++layer) {
        const double part = layer / 3.0;
        const Colour fill = mixed(colour(0x9CC190), colour(0x1F3F26), part);
        for (int tree = 0; tree < 9; ++tree) {
            const double x = random.fraction(-60, 1260);
            if (layer > 1 && x > 380 && x < 860) continue;
            drawFir(canvas, {x, 560 + part * 190}, 320 + part * 330, fill);
        }
    }
    canvas.blob(
        {{560, 520}, {640, 520}, {720, 640}, {690, 760}, {900, 960}, {320, 960}, {560, 760}, {610, 640}},
        colour(0xD9BE91));
    for (int fern = 0; fern < 40; ++fern) {
        const double x = random.oneIn(2) ? random.fraction(0, 350) : random.fraction(830, 1200);
        const double y = random.fraction(720, 900);
        for (int leaf = -2; leaf <= 2; ++leaf) {
            canvas.curve({{x, y}, {x + leaf * 16.0, y - 34}, {x + leaf * 34.0, y - 26}}, 5, colour(0x356B35));
        }
    }
    for (int ray = 0; ray < 5; ++ray) {
        const double x = 380 + ray * 130.0;
        canvas.polygon({{x, 0}, {x + 46, 0}, {x - 90, 700}, {x - 190, 700}}, {1, 1, 0.85, 0.1});
    }
}

void paintMeadow(Canvas& canvas, Random& random) {
    canvas.verticalGradient(0, 460, {{0, colour(0x6DB7E8)}, {1, colour(0xE6F6FB)}});
    drawCloud(canvas, random, {280, 170}, 90, {1, 1, 1, 0.85});
    drawCloud(canvas, random, {900, 120}, 70, {1, 1, 1, 0.8});
    drawRidge(canvas, random, 400, 50, 900, colour(0xA4CF8A));
    drawLeafTree(canvas, random, {910, 520}, 330, colour(0x5E9E4A));
    drawRidge(canvas, random, 520, 25, 900, colour(0x7DB663));
    for (int flower = 0; flower < 150; ++flower) {
        const double depth = random.fraction();
        const Point at = {random.fraction(0, 1200), 545 + depth * depth * 340};
        const double size = 6 + depth * depth * 30;
        static const std::vector<unsigned> petals = {0x9B5DE5, 0xF15BB5, 0xFEE440, 0xFFFFFF, 0xB388EB};
        canvas.curve({{at.x, at.y + size * 2.4}, {at.x + size * 0.2, at.y + size}, at}, 1 + size * 0.12,
                     colour(0x3F7F3A));
        drawFlower(canvas, at, size, 6, colour(random.pick(petals)), colour(0xF2A541));
    }
}

void paintCampfire(Canvas& canvas, Random& random) {
    canvas.verticalGradient(0, 900, {{0, colour(0x0B1330)}, {0.6, colour(0x1E2A4A)}, {1, colour(0x20180F)}});
    drawStars(canvas, random, 220, 480);
    drawFirRow(canvas, random, 590, 190, colour(0x0A1420));
    canvas.verticalGradient(585, 900, {{0, colour(0x1C1A18)}, {1, colour(0x0E0B09)}});
    canvas.glow({600, 660}, 520, colour(0xFF8C2B, 0.75));
    for (const double side : {-1.0, 1.0}) {
        for (int seat = 0; seat < 2; ++seat) {
            const double x = 600 + side * (280 + seat * 170);
            canvas.blob({{x - 60, 760}, {x - 48, 640}, {x, 596}, {x + 48, 640}, {x + 60, 760}},
                        colour(0x14100F));
            canvas.circle({x, 570}, 38, colour(0x14100F));
            canvas.curve({{x - side * 44, 640}, {x - side * 36, 606}, {x - side * 26, 560}}, 6,
                         colour(0xFFB066, 0.7));
        }
    }
    for (int log = 0; log < 4; ++log) {
        canvas.place({600, 750}, 1, -0.5 + log * 0.33);
        canvas.roundedRectangle(-120, -14, 240, 28, 12, colour(0x4A2C1A));
        canvas.restore();
    }
    static const unsigned tones[] = {0xE8421A, 0xFF8A1F, 0xFFC23D, 0xFFF0A8};
    for (int layer = 0; layer < 4; ++layer) {
        const double size = 1 - layer * 0.22;
        canvas.blob({{600 - 95 * size, 745},
                     {600 - 80 * size, 640},
                     {600 - 30 * size, 600},
                     {600 - 20 * size, 745 - 290 * size},
                     {600 + 45 * size, 600},
                     {600 + 85 * size, 650},
                     {600 + 95 * size, 745}},
                    colour(tones[layer], 0.9));
    }
    for (int spark = 0; spark < 40; ++spark) {
        const Point at = {random.fraction(500, 700), random.fraction(200, 560)};
        const double radius = random.fraction(1, 3.5);
        canvas.circle(at, radius, colour(0xFFC879, random.fraction(0.3, 1)));
    }
}

void paintAlps(Canvas& canvas, Random& random) {
    canvas.verticalGradient(0, 560, {{0, colour(0x2E86C8)}, {1, colour(0xDDF1FA)}});
    for (int peak = 0; peak < 4; ++peak) {
        const double x = 120 + peak * 320.0;
        const double top = 130 + random.fraction(0, 90);
        canvas.polygon({{x - 330, 640}, {x, top}, {x + 330, 640}},
                       mixed(colour(0x8093A8), colour(0x5F7389), peak % 2));
        canvas.polygon({{x - 92, top + 142},
                        {x, top},
                        {x + 92, top + 142},
                        {x + 46, top + 112},
                        {x + 10, top + 158},
                        {x - 40, top + 110}},
                       colour(0xFFFFFF));
    }
    drawRidge(canvas, random, 560, 40, 900, colour(0x5E9A55));
    drawFirRow(canvas, random, 600, 80, colour(0x2D5E3A));
    drawRidge(canvas, random, 640, 22, 900, colour(0x84BC62));
    drawCabin(canvas, {860, 720}, 190, colour(0x8A5A3B), colour(0x5A3A2A), colour(0xFFF2C4));
    for (int cow = 0; cow < 4; ++cow) {
        const Point at = {random.fraction(80, 640), random.fraction(720, 850)};
        canvas.ellipse(at, 46, 24, colour(0xF4EDE4));
        canvas.ellipse({at.x - 12, at.y - 4}, 18, 13, colour(0x7A4A2E));
        canvas.circle({at.x + 46, at.y - 18}, 15, colour(0x7A4A2E));
        for (const double leg : {-30.0, -16.0, 16.0, 30.0})
            canvas.rectangle(at.x + leg - 3, at.y + 14, 6, 28, colour(0xE3D8CB));
    }
}

void paintWinter(Canvas& canvas, Random& random) {
    canvas.verticalGradient(0, 900, {{0, colour(0xA7BCD6)}, {0.6, colour(0xEAD9DF)}, {1, colour(0xFFFFFF)}});
    drawRidge(canvas, random, 520, 60, 900, colour(0xC3D2E3));
    for (int tree = 0; tree < 10; ++tree) {
        const Point foot = {random.fraction(0, 1200), random.fraction(600, 660)};
        drawFir(canvas, foot, 220, colour(0x5F8391));
        drawFir(canvas, {foot.x - 6, foot.y - 12}, 200, colour(0xF5FAFF, 0.75));
    }
    drawRidge(canvas, random, 660, 24, 900, colour(0xF7FAFF));
    canvas.circle({820, 760}, 92, colour(0xFFFFFF));
    canvas.shadedCircle({820, 760}, 92, colour(0xFFFFFF), colour(0xD3DFEE));
    canvas.shadedCircle({820, 630}, 64, colour(0xFFFFFF), colour(0xD3DFEE));
    canvas.polygon({{820, 632}, {880, 646}, {822, 648}}, colour(0xF28C28));
    for (const double x : {798.0, 842.0})
        canvas.circle({x, 612}, 7, colour(0x2B2B2B));
    canvas.roundedRectangle(776, 676, 92, 22, 10, colour(0xC1272D));
    for (int flake = 0; flake < 160; ++flake) {
        const Point at = {random.fraction(0, 1200), random.fraction(0, 900)};
        canvas.circle(at, random.fraction(1.5, 6), {1, 1, 1, 0.8});
    }
}

void paintDunes(Canvas& canvas, Random& random) {
    canvas.verticalGradient(0, 560, {{0, colour(0x3E4A89)}, {0.6, colour(0xE9A178)}, {1, colour(0xFFDFA8)}});
    canvas.circle({300, 250}, 46, colour(0xFFF6DC));
    drawRidge(canvas, random, 520, 50, 900, colour(0xD99A5B));
    drawRidge(canvas, random, 620, 60, 900, colour(0xC07A42));
    for (int palm = 0; palm < 3; ++palm) {
        const Point foot = {790 + palm * 110.0, 690 + palm % 2 * 30.0};
        const Point top = {foot.x + 24, foot.y - 220};
        canvas.curve({foot, {foot.x - 8, foot.y - 110}, top}, 13, colour(0x3A2416));
        for (int leaf = 0; leaf < 8; ++leaf) {
            const double angle = fullTurn * leaf / 8;
            canvas.curve({top,
                          {top.x + std::cos(angle) * 50, top.y + std::sin(angle) * 26 - 22},
                          {top.x + std::cos(angle) * 95, top.y + std::sin(angle) * 40 + 18}},
                         8, colour(0x2C3A20));
        }
    }
    drawRidge(canvas, random, 760, 40, 900, colour(0x8E5230));
}

void paintBeach(Canvas& canvas, Random& random) {
    canvas.verticalGradient(0, 380, {{0, colour(0x2FA4E0)}, {1, colour(0xD7F3FB)}});
    drawCloud(canvas, random, {880, 130}, 80, {1, 1, 1, 0.9});
    drawWater(canvas, random, 380, 640, {colour(0x3FB8C9), colour(0x0F86A8), colour(0xFFFFFF)});
    canvas.blob({{-200, 1000}, {-100, 650}, {300, 600}, {700, 640}, {1300, 590}, {1400, 1000}},
                colour(0xFFFFFF));
    canvas.blob({{-200, 1000}, {-100, 672}, {300, 622}, {700, 662}, {1300, 612}, {1400, 1000}},
                colour(0xF2DDAA));
    canvas.line({{420, 800}, {470, 500}}, 9, colour(0xFFFFFF));
    for (int stripe = 0; stripe < 6; ++stripe) {
        const double from = -1 + stripe / 3.0;
        canvas.polygon({{470, 486},
                        {470 + from * 210, 600 - (1 - from * from) * 26},
                        {470 + (from + 1 / 3.0) * 210, 600 - (1 - (from + 1 / 3.0) * (from + 1 / 3.0)) * 26}},
                       colour(stripe % 2 == 0 ? 0xE63946 : 0xFFF8F0));
    }
    canvas.roundedRectangle(540, 790, 250, 60, 12, colour(0x1D7FA8));
    canvas.roundedRectangle(560, 790, 22, 60, 2, colour(0xFFFFFF));
    canvas.shadedCircle({900, 800}, 48, colour(0xFFE66D), colour(0xF08A3C));
}

void paintBalloons(Canvas& canvas, Random& random) {
    canvas.verticalGradient(0, 900, {{0, colour(0x5A76C9)}, {0.6, colour(0xF5B5A0)}, {1, colour(0xFFE5B4)}});
    drawRidge(canvas, random, 720, 60, 900, colour(0xA8758F));
    drawRidge(canvas, random, 800, 40, 900, colour(0x6B4A6B));
    static const std::vector<unsigned> tones = {0xE63946, 0xF4A261, 0x2A9D8F, 0x457B9D, 0xF2CC5B, 0x9B5DE5};
    for (int balloon = 0; balloon < 6; ++balloon) {
        const double size = 0.45 + random.fraction(0, 0.75);
        canvas.place({120.0 + balloon * 195, random.fraction(190, 520)}, size);
        const Colour main = colour(tones[static_cast<std::size_t>(balloon)]);
        canvas.line({{-34, 120}, {-17, 176}}, 3, colour(0x5A3A2A));
        canvas.line({{34, 120}, {17, 176}}, 3, colour(0x5A3A2A));
        canvas.blob({{0, -130}, {96, -70}, {104, 20}, {44, 118}, {-44, 118}, {-104, 20}, {-96, -70}}, main);
        canvas.blob({{0, -130}, {44, -66}, {48, 20}, {20, 118}, {-20, 118}, {-48, 20}, {-44, -66}},
                    mixed(main, colour(0xFFFFFF), 0.55));
        canvas.roundedRectangle(-22, 172, 44, 34, 8, colour(0x8A5A3B));
        canvas.restore();
    }
}

} // namespace

Painter naturePainter(std::string_view name) {
    static const std::map<std::string_view, Painter> painters = {
        {"forest", paintForest},     {"forestTwo", paintForest}, {"meadow", paintMeadow},
        {"campfire", paintCampfire}, {"alps", paintAlps},        {"winter", paintWinter},
        {"dunes", paintDunes},       {"beach", paintBeach},      {"balloons", paintBalloons}};
    const auto painter = painters.find(name);
    return painter == painters.end() ? nullptr : painter->second;
}

} // namespace quillbook::sample
