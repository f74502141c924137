#include "tools/sample/PictureElements.h"

#include <cmath>

namespace quillbook::sample {
namespace {

constexpr double fullTurn = 6.283185307179586;

} // namespace

void drawTable(PictureCanvas& canvas, Colour wall, Colour table) {
    const Colour dark = colour(0x2A1408);
    canvas.verticalGradient(0, 600, {{0, mixed(wall, colour(0xFFFFFF), 0.3)}, {1, wall}});
    canvas.verticalGradient(600, 900, {{0, table}, {1, mixed(table, dark, 0.35)}});
    for (double y = 640; y < 900; y += 46)
        canvas.line({{0, y}, {1200, y + 6}}, 2, mixed(table, dark, 0.3));
}

void drawRidge(PictureCanvas& canvas, DeterministicRandom& random, double top, double roughness,
               double bottom, Colour fill) {
    const double first = random.fraction(0, fullTurn);
    const double second = random.fraction(0, fullTurn);
    const double third = random.fraction(0, fullTurn);
    std::vector<Point> points = {{-20, bottom}};
    for (double x = -20; x <= PictureCanvas::width + 20; x += 12) {
        const double wave =
            std::sin(x / 210 + first) + 0.5 * std::sin(x / 83 + second) + 0.22 * std::sin(x / 31 + third);
        points.push_back({x, top - roughness * wave * 0.6});
    }
    points.push_back({PictureCanvas::width + 20, bottom});
    canvas.polygon(points, fill);
}

void drawWater(PictureCanvas& canvas, DeterministicRandom& random, double top, double bottom,
               const WaterColours& colours) {
    canvas.verticalGradient(top, bottom, {{0, colours.far}, {1, colours.near}});
    for (int index = 0; index < 90; ++index) {
        const double depth = random.fraction();
        const double y = top + 6 + (bottom - top - 12) * depth * depth;
        const double length = random.fraction(20, 60) * (0.4 + depth * 2);
        const double x = random.fraction(-50, PictureCanvas::width);
        Colour glint = colours.glint;
        glint.alpha *= random.fraction(0.15, 0.6);
        canvas.line({{x, y}, {x + length, y}}, 1.5 + depth * 4, glint);
    }
}

void drawCloud(PictureCanvas& canvas, DeterministicRandom& random, Point centre, double size, Colour fill) {
    for (int puff = -3; puff <= 3; ++puff) {
        const double radius = size * (1.0 - std::abs(puff) * 0.2) * random.fraction(0.42, 0.58);
        canvas.ellipse({centre.x + puff * size * 0.42, centre.y - radius * 0.35}, radius * 1.3, radius, fill);
    }
    canvas.ellipse({centre.x, centre.y + size * 0.08}, size * 1.65, size * 0.2, fill);
}

void drawStars(PictureCanvas& canvas, DeterministicRandom& random, int count, double bottom) {
    for (int star = 0; star < count; ++star) {
        const Point place = {random.fraction(0, PictureCanvas::width), random.fraction(0, bottom)};
        const double radius = random.fraction(0.8, 2.6);
        if (random.oneIn(9)) canvas.glow(place, radius * 7, colour(0xCFE3FF, 0.5));
        canvas.circle(place, radius, colour(0xFFFFFF, random.fraction(0.4, 1)));
    }
}

void drawFir(PictureCanvas& canvas, Point foot, double size, Colour fill) {
    canvas.rectangle(foot.x - size * 0.05, foot.y - size * 0.2, size * 0.1, size * 0.2,
                     mixed(fill, colour(0x2A1A10), 0.6));
    for (int tier = 0; tier < 4; ++tier) {
        const double half = size * (0.34 - tier * 0.07);
        const double base = foot.y - size * (0.14 + tier * 0.2);
        canvas.polygon({{foot.x - half, base}, {foot.x, base - size * 0.34}, {foot.x + half, base}}, fill);
    }
}

void drawFirRow(PictureCanvas& canvas, DeterministicRandom& random, double foot, double size, Colour fill) {
    for (double x = -20; x < PictureCanvas::width + 20; x += size * random.fraction(0.22, 0.5)) {
        const Point place = {x, foot + random.fraction(-4, 8)};
        drawFir(canvas, place, size * random.fraction(0.6, 1.1), fill);
    }
}

void drawLeafTree(PictureCanvas& canvas, DeterministicRandom& random, Point foot, double size,
                  Colour leaves) {
    const Colour bark = colour(0x6B4A32);
    canvas.polygon({{foot.x - size * 0.07, foot.y},
                    {foot.x - size * 0.035, foot.y - size * 0.6},
                    {foot.x + size * 0.035, foot.y - size * 0.6},
                    {foot.x + size * 0.08, foot.y}},
                   bark);
    for (int branch = -1; branch <= 1; branch += 2) {
        canvas.line({{foot.x, foot.y - size * 0.4}, {foot.x + branch * size * 0.2, foot.y - size * 0.7}},
                    size * 0.035, bark);
    }
    for (int leaf = 0; leaf < 46; ++leaf) {
        const double angle = random.fraction(0, fullTurn);
        const double distance = std::sqrt(random.fraction()) * size * 0.36;
        const Point centre = {foot.x + std::cos(angle) * distance * 1.15,
                              foot.y - size * 0.82 + std::sin(angle) * distance * 0.85};
        const Colour light = random.oneIn(2) ? colour(0xFFFFFF) : colour(0x15301A);
        const Colour tone = mixed(leaves, light, random.fraction(0, 0.22));
        canvas.circle(centre, size * random.fraction(0.06, 0.12), tone);
    }
}

void drawFlower(PictureCanvas& canvas, Point centre, double radius, int petals, Colour petal, Colour heart) {
    for (int index = 0; index < petals; ++index) {
        const double angle = fullTurn * index / petals;
        canvas.place(centre, 1, angle);
        canvas.ellipse({radius * 0.62, 0}, radius * 0.42, radius * 0.42 * 3.4 / petals * 1.6,
                       mixed(petal, colour(0xFFFFFF), index % 2 * 0.12));
        canvas.restore();
    }
    canvas.shadedCircle(centre, radius * 0.34, heart, mixed(heart, colour(0x3A1F00), 0.35));
}

void drawJetty(PictureCanvas& canvas, double shoreY, Colour wood) {
    const Colour dark = mixed(wood, colour(0x000000), 0.45);
    for (const double y : {shoreY + 60, shoreY + 130, shoreY + 230}) {
        const double half = 34 + (y - shoreY) * 0.42;
        canvas.rectangle(690 - half, y, 12, 70 + (y - shoreY) * 0.2, dark);
        canvas.rectangle(690 + half - 12, y, 12, 70 + (y - shoreY) * 0.2, dark);
    }
    canvas.polygon({{664, shoreY + 30}, {716, shoreY + 30}, {860, 900}, {520, 900}}, wood);
    for (double y = shoreY + 40; y < 900; y += 10 + (y - shoreY) * 0.045) {
        const double half = 26 + (y - shoreY - 30) * 0.36;
        canvas.line({{690 - half, y}, {690 + half, y}}, 2 + (y - shoreY) * 0.006, dark);
    }
}

void drawRowingBoat(PictureCanvas& canvas, Point centre, double size, Colour hull) {
    canvas.place(centre, size / 100);
    canvas.ellipse({0, 26}, 104, 9, colour(0x0B1E2B, 0.35));
    canvas.blob({{-100, -18}, {-70, 18}, {0, 27}, {70, 18}, {100, -18}, {40, -6}, {0, -4}, {-40, -6}}, hull);
    canvas.curve({{-100, -18}, {-40, -6}, {0, -4}, {40, -6}, {100, -18}}, 5,
                 mixed(hull, colour(0xFFFFFF), 0.5));
    canvas.line({{-14, -12}, {-78, 34}}, 4, colour(0xD9B382));
    canvas.line({{14, -12}, {78, 34}}, 4, colour(0xD9B382));
    canvas.roundedRectangle(-16, -48, 32, 44, 12, colour(0xC8553D));
    canvas.circle({0, -62}, 14, colour(0xE8B48F));
    canvas.ellipse({0, -73}, 22, 6, colour(0xEAD7A1));
    canvas.ellipse({0, -76}, 12, 8, colour(0xEAD7A1));
    canvas.restore();
}

void drawCabin(PictureCanvas& canvas, Point foot, double size, Colour wall, Colour roof, Colour windowLight) {
    canvas.place(foot, size / 100);
    canvas.rectangle(-60, -62, 120, 62, wall);
    for (double y = -52; y < 0; y += 12)
        canvas.line({{-60, y}, {60, y}}, 1.5, mixed(wall, colour(0x000000), 0.25));
    canvas.rectangle(28, -118, 16, 40, mixed(roof, colour(0x000000), 0.2));
    canvas.polygon({{-76, -58}, {0, -112}, {76, -58}}, roof);
    canvas.rectangle(-12, -42, 26, 42, mixed(wall, colour(0x2A1408), 0.65));
    for (const double x : {-46.0, 26.0}) {
        canvas.rectangle(x, -44, 22, 20, windowLight);
        canvas.line({{x + 11, -44}, {x + 11, -24}}, 2, wall);
    }
    canvas.restore();
}

} // namespace quillbook::sample
