#include "tools/sample/MediaPictures.h"
#include "tools/sample/PictureElements.h"

#include <map>

namespace quillbook::sample {
namespace {

using Canvas = PictureCanvas;
using Random = DeterministicRandom;

constexpr double horizon = 470;

/// What a lake looks like at one time of the day.
struct LakeLight {
    std::vector<GradientStop> sky;
    Point sun;
    Colour sunlight;
    Colour farHills;
    Colour nearHills;
    Colour trees;
    WaterColours water;
};

LakeLight dawnLight() {
    return {{{0, colour(0x7A9CC6)}, {0.55, colour(0xF4C9B0)}, {1, colour(0xFFE8C2)}},
            {820, 400},
            colour(0xFFF3D0),
            colour(0x9AA7C7),
            colour(0x6F83A6),
            colour(0x3E5568),
            {colour(0xF3D6BE), colour(0x5B7F9E), colour(0xFFF6E3)}};
}

LakeLight noonLight() {
    return {{{0, colour(0x3F8FD6)}, {1, colour(0xCDEBFA)}},
            {260, 120},
            colour(0xFFFDE8),
            colour(0x8FB3C9),
            colour(0x6FA06B),
            colour(0x2F6B3C),
            {colour(0x9BD3E8), colour(0x1F6F9E), colour(0xFFFFFF)}};
}

LakeLight sunsetLight() {
    return {{{0, colour(0x4B3F72)}, {0.5, colour(0xE76F51)}, {1, colour(0xFFD08A)}},
            {520, 430},
            colour(0xFFE9A8),
            colour(0x7B4B6A),
            colour(0x4E3559),
            colour(0x2A1F3A),
            {colour(0xF7A072), colour(0x3A2C55), colour(0xFFE2B0)}};
}

void drawLake(Canvas& canvas, Random& random, const LakeLight& light) {
    canvas.verticalGradient(0, horizon, light.sky);
    canvas.glow(light.sun, 330, light.sunlight);
    canvas.circle(light.sun, 42, light.sunlight);
    drawCloud(canvas, random, {random.fraction(150, 420), 170}, 70, {1, 1, 1, 0.4});
    drawCloud(canvas, random, {random.fraction(800, 1050), 110}, 55, {1, 1, 1, 0.3});
    drawRidge(canvas, random, 360, 80, horizon, light.farHills);
    drawRidge(canvas, random, 420, 45, horizon, light.nearHills);
    drawFirRow(canvas, random, horizon, 70, light.trees);
    drawWater(canvas, random, horizon, Canvas::height, light.water);
    for (double y = horizon + 8; y < 850; y += 17) {
        const double half = 30 + random.fraction(0, 30) + (y - horizon) * 0.12;
        Colour path = light.sunlight;
        path.alpha = 0.5 - (y - horizon) / 1100;
        canvas.line({{light.sun.x - half, y}, {light.sun.x + half, y}}, 4, path);
    }
}

void paintLakeDawn(Canvas& canvas, Random& random) {
    drawLake(canvas, random, dawnLight());
    for (int band = 0; band < 3; ++band)
        canvas.ellipse({300.0 + band * 330, 468}, 360, 18, {1, 1, 1, 0.28});
    drawJetty(canvas, 560, colour(0x8A6B52));
}

void paintLakeNoon(Canvas& canvas, Random& random) {
    drawLake(canvas, random, noonLight());
    drawCabin(canvas, {930, 486}, 130, colour(0xA9714B), colour(0x7A3B2E), colour(0xFFF2C4));
    canvas.blob({{-80, 960}, {-60, 760}, {160, 735}, {330, 800}, {480, 930}}, colour(0x5C9A4C));
    canvas.line({{120, 770}, {205, 690}, {300, 770}}, 8, colour(0xB98B5E));
    canvas.polygon({{150, 742}, {205, 690}, {320, 700}, {275, 752}}, colour(0xF25F5C));
}

void paintJetty(Canvas& canvas, Random& random) {
    drawLake(canvas, random, noonLight());
    drawJetty(canvas, 500, colour(0xB08D68));
    canvas.roundedRectangle(610, 640, 44, 30, 8, colour(0xF2C14E));
    canvas.roundedRectangle(715, 650, 46, 26, 8, colour(0x3D5A80));
}

void paintSunset(Canvas& canvas, Random& random) {
    drawLake(canvas, random, sunsetLight());
    for (int bird = 0; bird < 7; ++bird) {
        const Point at = {random.fraction(620, 1000), random.fraction(110, 260)};
        canvas.curve({{at.x - 18, at.y - 8},
                      {at.x - 7, at.y - 12},
                      {at.x, at.y},
                      {at.x + 7, at.y - 12},
                      {at.x + 18, at.y - 8}},
                     3, colour(0x2A1F3A));
    }
    for (double x = -10; x < 260; x += 14) {
        canvas.curve({{x, 910},
                      {x + random.fraction(-10, 10), 790},
                      {x + random.fraction(-40, 40), random.fraction(600, 720)}},
                     4, colour(0x1C1428));
    }
}

void paintBoat(Canvas& canvas, Random& random) {
    drawLake(canvas, random, noonLight());
    drawRowingBoat(canvas, {590, 650}, 210, colour(0x2F7F79));
    drawRowingBoat(canvas, {210, 540}, 80, colour(0xB23A48));
}

void paintRainbow(Canvas& canvas, Random& random) {
    canvas.verticalGradient(0, 560, {{0, colour(0x566B84)}, {1, colour(0xC9D8DE)}});
    drawCloud(canvas, random, {250, 140}, 130, colour(0x7D8EA3, 0.9));
    drawCloud(canvas, random, {900, 120}, 150, colour(0x6F8096, 0.9));
    static const unsigned bands[] = {0xE63946, 0xF4A261, 0xF9E04B, 0x52B788, 0x3A86FF, 0x7B4FC9};
    for (int band = 0; band < 6; ++band)
        canvas.ring({620, 640}, 520 - band * 17, 19, colour(bands[band], 0.5));
    drawRidge(canvas, random, 520, 60, 900, colour(0x6C9A77));
    drawFirRow(canvas, random, 640, 120, colour(0x2F5B45));
    drawWater(canvas, random, 630, 900, {colour(0xA9C3C9), colour(0x3F6C80), colour(0xFFFFFF)});
    drawRowingBoat(canvas, {330, 760}, 120, colour(0x6A4C93));
}

void paintNightSky(Canvas& canvas, Random& random) {
    canvas.verticalGradient(0, 620, {{0, colour(0x050A1F)}, {0.7, colour(0x16264F)}, {1, colour(0x31406B)}});
    for (int cloud = 0; cloud < 60; ++cloud) {
        const double along = random.fraction(-100, 1300);
        const double y = 480 - along * 0.34 + random.fraction(-60, 60);
        canvas.glow({along, y}, random.fraction(60, 150), colour(0x9DB4E8, 0.06));
    }
    drawStars(canvas, random, 620, 600);
    drawRidge(canvas, random, 570, 70, 640, colour(0x0C1730));
    drawFirRow(canvas, random, 640, 90, colour(0x060D1C));
    drawWater(canvas, random, 635, 900, {colour(0x2B3A66), colour(0x070D22), colour(0xAFC4F0)});
    drawCabin(canvas, {270, 650}, 120, colour(0x2A1C16), colour(0x17110F), colour(0xFFC65C));
    canvas.glow({270, 620}, 150, colour(0xFFC65C, 0.35));
}

} // namespace

Painter lakePainter(std::string_view name) {
    static const std::map<std::string_view, Painter> painters = {
        {"lakeDawn", paintLakeDawn}, {"lakeNoon", paintLakeNoon}, {"jetty", paintJetty},
        {"sunset", paintSunset},     {"boat", paintBoat},         {"rainbow", paintRainbow},
        {"nightSky", paintNightSky}};
    const auto painter = painters.find(name);
    return painter == painters.end() ? nullptr : painter->second;
}

} // namespace quillbook::sample
