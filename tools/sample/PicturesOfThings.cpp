#include "tools/sample/MediaPictures.h"
#include "tools/sample/PictureElements.h"

#include <cmath>
#include <map>

namespace quillbook::sample {
namespace {

using Canvas = PictureCanvas;
using Random = DeterministicRandom;

constexpr double fullTurn = 6.283185307179586;

void paintCat(Canvas& canvas, Random& random) {
    canvas.verticalGradient(0, 900, {{0, colour(0xF3E3D0)}, {1, colour(0xE4C9A8)}});
    canvas.roundedRectangle(180, 60, 840, 560, 14, colour(0xFFFFFF));
    canvas.clipTo(210, 90, 780, 500);
    canvas.verticalGradient(90, 590, {{0, colour(0x7FB8E6)}, {1, colour(0xE8F5FB)}});
    drawRidge(canvas, random, 470, 40, 600, colour(0x8DBB7A));
    drawLeafTree(canvas, random, {860, 600}, 330, colour(0x6CA35A));
    canvas.restore();
    canvas.rectangle(590, 90, 20, 500, colour(0xFFFFFF));
    canvas.rectangle(120, 620, 960, 46, colour(0xF7F1E8));
    const Colour fur = colour(0x4A4A55);
    canvas.curve({{690, 610}, {820, 640}, {900, 600}, {960, 660}, {940, 740}}, 36, fur);
    canvas.blob({{430, 625}, {420, 480}, {490, 370}, {600, 350}, {710, 380}, {760, 500}, {750, 625}}, fur);
    canvas.ellipse({500, 320}, 120, 104, fur);
    for (const double side : {-1.0, 1.0}) {
        canvas.polygon({{500 + side * 106, 300}, {500 + side * 92, 168}, {500 + side * 24, 236}}, fur);
        canvas.polygon({{500 + side * 92, 276}, {500 + side * 84, 200}, {500 + side * 44, 240}},
                       colour(0xE8A6A1));
        canvas.ellipse({500 + side * 46, 310}, 24, 27, colour(0xF2D14E));
        canvas.ellipse({500 + side * 46, 310}, 8, 24, colour(0x1A1A1A));
        for (int whisker = -1; whisker <= 1; ++whisker)
            canvas.line({{500 + side * 34, 362}, {500 + side * 160, 356 + whisker * 24.0}}, 3,
                        colour(0xF5F5F5));
    }
    canvas.ellipse({500, 376}, 44, 30, colour(0xF5F0EA));
    canvas.polygon({{488, 352}, {512, 352}, {500, 366}}, colour(0xE28A86));
    canvas.ellipse({520, 560}, 70, 60, colour(0xF5F0EA));
}

void paintBicycle(Canvas& canvas, Random& random) {
    canvas.verticalGradient(0, 640, {{0, colour(0xD88C6A)}, {1, colour(0xC27755)}});
    for (double y = 0; y < 640; y += 42) {
        for (double x = std::fmod(y, 84) == 0 ? -60 : 0; x < 1200; x += 120) {
            canvas.roundedRectangle(x + 3, y + 3, 113, 35, 4,
                                    mixed(colour(0xB5603F), colour(0xD9906E), random.fraction()));
        }
    }
    canvas.verticalGradient(640, 900, {{0, colour(0xA9A29A)}, {1, colour(0x7C756D)}});
    for (const double x : {370.0, 830.0}) {
        canvas.ring({x, 640}, 160, 16, colour(0x26262B));
        canvas.ring({x, 640}, 146, 6, colour(0xD9D9D9));
        for (int spoke = 0; spoke < 18; ++spoke) {
            const double angle = fullTurn * spoke / 18;
            canvas.line({{x, 640}, {x + std::cos(angle) * 145, 640 + std::sin(angle) * 145}}, 2,
                        colour(0xE5E5E5, 0.8));
        }
    }
    const Colour frame = colour(0x1D6A96);
    canvas.line({{370, 640}, {500, 400}, {760, 390}, {570, 650}, {370, 640}}, 17, frame);
    canvas.line({{500, 400}, {570, 650}}, 17, frame);
    canvas.line({{830, 640}, {745, 330}}, 17, frame);
    canvas.line({{488, 378}, {478, 340}}, 12, colour(0x303035));
    canvas.blob({{415, 338}, {470, 318}, {545, 330}, {500, 352}}, colour(0x5A2E1C));
    canvas.curve({{745, 330}, {720, 296}, {670, 300}}, 12, colour(0x303035));
    canvas.shadedCircle({742, 306}, 19, colour(0xFFF3B0), colour(0xB8860B));
    canvas.ring({570, 650}, 44, 9, colour(0x303035));
    canvas.roundedRectangle(780, 372, 130, 90, 14, colour(0xC9A06B));
    for (int flower = 0; flower < 7; ++flower)
        drawFlower(canvas, {795 + flower * 17.0, 358 + flower % 2 * 14.0}, 26, 7,
                   colour(flower % 2 == 0 ? 0xFFD23F : 0xFF6B9A), colour(0x8A4B00));
}

void paintMap(Canvas& canvas, Random& random) {
    canvas.rectangle(0, 0, 1200, 900, colour(0xE8F0DA));
    for (int wood = 0; wood < 16; ++wood) {
        const Point at = {random.fraction(0, 1200), random.fraction(0, 900)};
        canvas.blob({{at.x - 90, at.y},
                     {at.x - 20, at.y - 60},
                     {at.x + 80, at.y - 30},
                     {at.x + 70, at.y + 50},
                     {at.x - 40, at.y + 60}},
                    colour(0xC4DDAE));
    }
    canvas.blob(
        {{420, 180}, {640, 120}, {860, 210}, {900, 400}, {800, 560}, {640, 600}, {520, 520}, {380, 400}},
        colour(0x9CCBE6));
    canvas.blob(
        {{450, 205}, {640, 150}, {830, 230}, {865, 395}, {780, 530}, {640, 565}, {540, 495}, {415, 385}},
        colour(0xB4DAF0));
    canvas.curve({{640, 590}, {600, 700}, {660, 800}, {640, 920}}, 16, colour(0x9CCBE6));
    const auto road = [&](const std::vector<Point>& points, double thickness) {
        canvas.curve(points, thickness + 6, colour(0xC9BFA8));
        canvas.curve(points, thickness, colour(0xFFFFFF));
    };
    road({{-20, 760}, {240, 700}, {480, 720}, {800, 690}, {1220, 740}}, 18);
    road({{240, 700}, {300, 500}, {280, 260}, {340, -20}}, 12);
    road({{800, 690}, {980, 520}, {1000, 300}, {920, 90}, {940, -20}}, 12);
    canvas.line({{-20, 830}, {1220, 854}}, 8, colour(0x6C757D));
    for (double x = 0; x < 1200; x += 34)
        canvas.line({{x, 818 + x * 0.0194}, {x, 843 + x * 0.0194}}, 4, colour(0x6C757D));
    const std::vector<Point> way = {{180, 822}, {230, 706},  {480, 722}, {800, 692},
                                    {975, 525}, {1000, 330}, {890, 330}};
    canvas.curve(way, 12, colour(0xE63946));
    canvas.roundedRectangle(150, 790, 60, 60, 12, colour(0x1D3557));
    canvas.circle({180, 820}, 14, colour(0xFFFFFF));
    canvas.blob({{890, 340}, {846, 262}, {860, 210}, {890, 196}, {920, 210}, {934, 262}}, colour(0xE63946));
    canvas.circle({890, 250}, 18, colour(0xFFFFFF));
}

} // namespace

Painter thingPainter(std::string_view name) {
    static const std::map<std::string_view, Painter> painters = {
        {"cat", paintCat}, {"bicycle", paintBicycle}, {"map", paintMap}};
    const auto painter = painters.find(name);
    return painter == painters.end() ? nullptr : painter->second;
}

} // namespace quillbook::sample
