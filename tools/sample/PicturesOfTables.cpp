#include "tools/sample/MediaPictures.h"
#include "tools/sample/PictureElements.h"

#include <cmath>
#include <map>

namespace quillbook::sample {
namespace {

using Canvas = PictureCanvas;
using Random = DeterministicRandom;

constexpr double fullTurn = 6.283185307179586;

void drawCake(Canvas& canvas, Random& random, Colour cream, Colour icing, int candles) {
    canvas.ellipse({600, 770}, 390, 52, colour(0x1E1410, 0.25));
    canvas.ellipse({600, 755}, 370, 54, colour(0xF7F7F2));
    const auto tier = [&](double half, double top, double bottom) {
        canvas.rectangle(600 - half, top, 2 * half, bottom - top, cream);
        canvas.ellipse({600, bottom}, half, half * 0.13, cream);
        for (double y = top + 50; y < bottom; y += 52)
            canvas.line({{600 - half, y}, {600 + half, y}}, 9, mixed(cream, icing, 0.55));
        canvas.ellipse({600, top}, half, half * 0.13, mixed(icing, colour(0xFFFFFF), 0.25));
        for (double x = -half; x < half - 10; x += half / 7) {
            canvas.roundedRectangle(600 + x, top, half / 8, random.fraction(30, 62), half / 18,
                                    mixed(icing, colour(0xFFFFFF), 0.12));
        }
    };
    tier(300, 560, 745);
    tier(210, 400, 560);
    for (int candle = 0; candle < candles; ++candle) {
        const double x = 600 - 160 + 320.0 * candle / (candles - 1);
        const double lean = random.fraction(-9, 9);
        canvas.line({{x, 398}, {x + lean, 310}}, 12, colour(candle % 2 == 0 ? 0x4EA8DE : 0xF15BB5));
        canvas.glow({x + lean, 288}, 60, colour(0xFFD166, 0.8));
        canvas.blob({{x + lean - 9, 294}, {x + lean, 262}, {x + lean + 9, 294}, {x + lean, 306}},
                    colour(0xFFB703));
    }
    for (int berry = 0; berry < 9; ++berry)
        canvas.shadedCircle({600 - 260 + berry * 65.0, 568}, 24, colour(0xFF6B6B), colour(0xA4161A));
}

void paintCake(Canvas& canvas, Random& random) {
    drawTable(canvas, colour(0xBFD7EA), colour(0xB5835A));
    drawCake(canvas, random, colour(0xFFF1DC), colour(0x9B5DE5), 5);
}

void paintCakeTwo(Canvas& canvas, Random& random) {
    drawTable(canvas, colour(0xF6D6AD), colour(0x8D5B3E));
    drawCake(canvas, random, colour(0x7B4B2A), colour(0xF7E1C4), 7);
}

void drawPear(Canvas& canvas, Point at, double size, Colour skin) {
    canvas.blob({{at.x, at.y - size * 1.5},
                 {at.x + size * 0.42, at.y - size * 0.9},
                 {at.x + size * 0.9, at.y},
                 {at.x + size * 0.5, at.y + size * 0.85},
                 {at.x - size * 0.5, at.y + size * 0.85},
                 {at.x - size * 0.9, at.y},
                 {at.x - size * 0.42, at.y - size * 0.9}},
                skin);
    canvas.ellipse({at.x - size * 0.3, at.y - size * 0.2}, size * 0.2, size * 0.36, {1, 1, 1, 0.3});
    canvas.curve({{at.x, at.y - size * 1.45}, {at.x + 8, at.y - size * 1.8}}, 7, colour(0x5A3A1E));
}

void drawBowl(Canvas& canvas, Colour glaze) {
    canvas.ellipse({600, 800}, 330, 36, colour(0x1E1410, 0.3));
    canvas.blob({{290, 590}, {360, 720}, {480, 795}, {720, 795}, {840, 720}, {910, 590}, {600, 640}}, glaze);
    canvas.ellipse({600, 600}, 312, 52, mixed(glaze, colour(0x10202A), 0.4));
    canvas.curve({{330, 650}, {480, 715}, {720, 715}, {870, 650}}, 12, colour(0xFFFFFF, 0.75));
}

void paintStillLife(Canvas& canvas, Random& /*random*/) {
    drawTable(canvas, colour(0x9DB4A0), colour(0xC08552));
    drawBowl(canvas, colour(0x33658A));
    drawPear(canvas, {430, 540}, 92, colour(0xC9D65B));
    canvas.shadedCircle({600, 545}, 92, colour(0xFF8A75), colour(0xB5171E));
    canvas.shadedCircle({750, 560}, 82, colour(0xFFD98A), colour(0xE8871E));
    canvas.shadedCircle({670, 480}, 72, colour(0xB9E37A), colour(0x5A9E3A));
    for (int row = 0; row < 4; ++row) {
        for (int grape = 0; grape < 5; ++grape) {
            canvas.shadedCircle({840.0 + grape * 26 + row * 8, 600.0 + row * 32}, 21, colour(0xB98BD6),
                                colour(0x4A1D6B));
        }
    }
    canvas.shadedCircle({250, 770}, 66, colour(0xFFE08A), colour(0xE0A100));
    canvas.line({{960, 800}, {1120, 850}}, 16, colour(0xD9D9D9));
    canvas.line({{910, 786}, {965, 802}}, 24, colour(0x5A3A2A));
}

void paintHoneyApples(Canvas& canvas, Random& /*random*/) {
    drawTable(canvas, colour(0xFBEBD0), colour(0xE6E1D6));
    canvas.ellipse({600, 770}, 470, 70, colour(0xFFFFFF));
    canvas.ellipse({600, 760}, 420, 56, colour(0xEFE7DA));
    for (const double x : {330.0, 850.0, 960.0}) {
        canvas.shadedCircle({x, 650}, 96, colour(0xFF7A6B), colour(0xA3151D));
        canvas.curve({{x, 560}, {x + 10, 520}}, 9, colour(0x5A3A1E));
        canvas.blob({{x + 10, 540}, {x + 60, 500}, {x + 84, 530}, {x + 40, 552}}, colour(0x5A9E3A));
    }
    canvas.roundedRectangle(480, 470, 240, 290, 50, colour(0xF2A922, 0.92));
    canvas.roundedRectangle(505, 500, 40, 220, 20, {1, 1, 1, 0.35});
    canvas.roundedRectangle(500, 430, 200, 56, 16, colour(0xC98A2B));
    canvas.line({{640, 300}, {600, 560}}, 14, colour(0x9C6B3F));
    for (int groove = 0; groove < 5; ++groove)
        canvas.roundedRectangle(562 - groove % 2 * 4, 540 + groove * 24.0, 76, 18, 9, colour(0x8A5A2E));
}

void paintFlowers(Canvas& canvas, Random& random) {
    drawTable(canvas, colour(0xF7CAD0), colour(0xA47148));
    static const std::vector<unsigned> petals = {0xFF5D8F, 0xFFAFCC, 0xFFD166, 0xFFFFFF, 0xC77DFF};
    std::vector<Point> heads;
    for (int stem = 0; stem < 15; ++stem) {
        const double angle = -1.25 + stem * 2.5 / 14;
        const double length = random.fraction(190, 400);
        heads.push_back({600 + std::sin(angle) * length, 560 - std::cos(angle) * length});
        canvas.curve({{600 + (stem - 7) * 6.0, 660},
                      {600 + std::sin(angle) * length * 0.5, 590 - length * 0.4},
                      heads.back()},
                     8, colour(0x4F8A4B));
    }
    for (const Point& head : heads) {
        const double size = random.fraction(48, 76);
        drawFlower(canvas, head, size, 9, colour(random.pick(petals)), colour(0xE8A33D));
    }
    canvas.ellipse({600, 815}, 150, 22, colour(0x1E1410, 0.3));
    canvas.blob({{520, 560},
                 {505, 680},
                 {480, 760},
                 {520, 815},
                 {680, 815},
                 {720, 760},
                 {695, 680},
                 {680, 560},
                 {600, 575}},
                colour(0x74C0D8, 0.88));
    canvas.curve({{530, 620}, {512, 720}, {530, 790}}, 12, {1, 1, 1, 0.5});
}

void paintPancakes(Canvas& canvas, Random& random) {
    drawTable(canvas, colour(0xFFE8B6), colour(0x9A6B45));
    canvas.ellipse({600, 790}, 430, 70, colour(0xFFFFFF));
    canvas.ellipse({600, 782}, 350, 50, colour(0xE4E9EC));
    for (int cake = 0; cake < 7; ++cake) {
        const double y = 760 - cake * 44.0;
        const double x = 600 + random.fraction(-16, 16);
        canvas.ellipse({x, y + 20}, 262, 50, colour(0xC98A45));
        canvas.ellipse({x, y}, 262, 50, colour(0xE9B872));
        canvas.ellipse({x, y - 3}, 235, 40, colour(0xD59A4F));
    }
    canvas.blob({{420, 490},
                 {600, 462},
                 {790, 490},
                 {820, 600},
                 {780, 690},
                 {745, 560},
                 {640, 530},
                 {560, 640},
                 {520, 545},
                 {440, 580}},
                colour(0xA85A16, 0.85));
    canvas.roundedRectangle(545, 445, 110, 48, 10, colour(0xFFF0A8));
    for (int berry = 0; berry < 14; ++berry)
        canvas.shadedCircle({random.fraction(250, 950), random.fraction(780, 830)}, 18, colour(0x7B8CDE),
                            colour(0x27306B));
}

void paintGame(Canvas& canvas, Random& random) {
    canvas.verticalGradient(0, 900, {{0, colour(0x7A5238)}, {1, colour(0x4E3222)}});
    canvas.roundedRectangle(210, 90, 780, 720, 24, colour(0xF5E6C8));
    static const unsigned fields[] = {0xE76F51, 0xF4A261, 0xE9C46A, 0x2A9D8F, 0x457B9D};
    for (int field = 0; field < 40; ++field) {
        const double angle = fullTurn * field / 40;
        const double wobble = 1 + 0.12 * std::sin(angle * 4);
        canvas.circle({600 + std::cos(angle) * 320 * wobble, 450 + std::sin(angle) * 285 * wobble}, 25,
                      colour(fields[field % 5]));
    }
    drawCabin(canvas, {600, 520}, 150, colour(0xC98A5B), colour(0x8A3B2E), colour(0xFFF2C4));
    for (int piece = 0; piece < 4; ++piece) {
        const Point at = {random.fraction(330, 880), random.fraction(230, 680)};
        canvas.ellipse({at.x, at.y + 30}, 30, 12, colour(0x1E1410, 0.3));
        canvas.polygon({{at.x - 27, at.y + 30}, {at.x, at.y - 40}, {at.x + 27, at.y + 30}},
                       colour(fields[piece]));
        canvas.shadedCircle({at.x, at.y - 44}, 20, colour(0xFFFFFF), colour(fields[piece]));
    }
    canvas.shadedCircle({820, 300}, 46, colour(0xFDF0D5), colour(0xB08968)); // The button that plays along.
    for (const double x : {806.0, 834.0}) {
        for (const double y : {286.0, 314.0})
            canvas.circle({x, y}, 6, colour(0x5A3A2A));
    }
    canvas.roundedRectangle(250, 690, 74, 74, 14, colour(0xFFFFFF));
    for (const double dot : {268.0, 287.0, 306.0})
        canvas.circle({dot, 708 + (dot - 268)}, 7, colour(0x222222));
}

} // namespace

Painter tablePainter(std::string_view name) {
    static const std::map<std::string_view, Painter> painters = {{"cake", paintCake},
                                                                 {"cakeTwo", paintCakeTwo},
                                                                 {"stillLife", paintStillLife},
                                                                 {"honeyApples", paintHoneyApples},
                                                                 {"flowers", paintFlowers},
                                                                 {"pancakes", paintPancakes},
                                                                 {"game", paintGame}};
    const auto painter = painters.find(name);
    return painter == painters.end() ? nullptr : painter->second;
}

} // namespace quillbook::sample
