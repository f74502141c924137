#include "tools/sample/MediaPortraits.h"

#include "tools/sample/ImageEncoders.h"
#include "tools/sample/PictureCanvas.h"

namespace quillbook::sample {
namespace {

// Portraits are square, so that one unit across is not one unit down: a circle is 3 : 4 wide as seen in
// units.
constexpr double centreX = 600;

void drawBackHair(PictureCanvas& canvas, const PortraitLook& look) {
    const Colour hair = colour(look.hair);
    if (look.style == HairStyle::longHair) {
        canvas.ellipse({centreX, 400}, 350, 260, hair);
        canvas.roundedRectangle(250, 400, 700, 330, 120, hair);
    }
    if (look.style == HairStyle::curls) {
        for (int index = -3; index <= 3; ++index) {
            canvas.ellipse({centreX + index * 95.0, 250 + index * index * 14.0}, 125, 92, hair);
        }
    }
    if (look.style == HairStyle::bun) canvas.ellipse({centreX, 130}, 130, 90, hair);
}

void drawFace(PictureCanvas& canvas, const PortraitLook& look) {
    const Colour skin = colour(look.skin);
    const Colour dark = colour(0x3A2A22);
    canvas.roundedRectangle(490, 600, 220, 180, 80, mixed(skin, colour(0x8A4A2A), 0.18));
    canvas.ellipse({centreX, 430}, 285, 250, skin);
    for (const double side : {-1.0, 1.0}) {
        canvas.ellipse({centreX + side * 284, 440}, 45, 42, mixed(skin, colour(0x8A4A2A), 0.12));
        canvas.ellipse({centreX + side * 115, 420}, 28, 25, dark);
        canvas.ellipse({centreX + side * 115 + 10, 412}, 9, 7, colour(0xFFFFFF));
        canvas.ellipse({centreX + side * 175, 510}, 62, 36, colour(0xE8756A, 0.28));
        canvas.curve({{centreX + side * 165, 362}, {centreX + side * 115, 346}, {centreX + side * 68, 358}},
                     14, mixed(colour(look.hair), dark, 0.35));
    }
    canvas.curve({{centreX - 4, 440}, {centreX + 22, 490}, {centreX - 6, 500}}, 10,
                 mixed(skin, colour(0x8A4A2A), 0.4));
    canvas.curve({{centreX - 95, 550}, {centreX, 592}, {centreX + 95, 550}}, 18, colour(0xA63D40));
}

void drawBeard(PictureCanvas& canvas, const PortraitLook& look) {
    const Colour hair = colour(look.hair);
    canvas.blob(
        {{330, 500}, {380, 620}, {600, 705}, {820, 620}, {870, 500}, {780, 590}, {600, 520}, {420, 590}},
        hair);
    canvas.curve({{515, 590}, {600, 618}, {685, 590}}, 20, colour(0xC8605E));
}

void drawFringe(PictureCanvas& canvas, const PortraitLook& look) {
    const Colour hair = colour(look.hair);
    switch (look.style) {
    case HairStyle::none:
        canvas.ellipse({330, 430}, 40, 75, hair);
        canvas.ellipse({870, 430}, 40, 75, hair);
        return;
    case HairStyle::brief:
        canvas.blob({{315, 400},
                     {340, 240},
                     {480, 150},
                     {640, 145},
                     {800, 190},
                     {880, 300},
                     {885, 400},
                     {800, 300},
                     {600, 270},
                     {420, 300}},
                    hair);
        return;
    case HairStyle::parting:
        canvas.blob({{305, 560},
                     {300, 330},
                     {420, 180},
                     {600, 150},
                     {790, 180},
                     {900, 330},
                     {895, 560},
                     {850, 400},
                     {740, 290},
                     {520, 250},
                     {400, 330},
                     {340, 440}},
                    hair);
        return;
    case HairStyle::bun:
    case HairStyle::longHair:
        canvas.blob({{305, 430},
                     {330, 260},
                     {460, 170},
                     {600, 155},
                     {740, 170},
                     {870, 260},
                     {895, 430},
                     {800, 300},
                     {620, 235},
                     {400, 300}},
                    hair);
        return;
    case HairStyle::curls:
        for (int index = -2; index <= 2; ++index) {
            canvas.ellipse({centreX + index * 110.0, 225 + index * index * 18.0}, 85, 60, hair);
        }
        return;
    }
}

void drawGlasses(PictureCanvas& canvas) {
    for (const double side : {-1.0, 1.0}) {
        canvas.ring({centreX + side * 115, 424}, 78, 12, colour(0x2F2F35));
        canvas.line({{centreX + side * 193, 412}, {centreX + side * 275, 398}}, 12, colour(0x2F2F35));
    }
    canvas.line({{centreX - 37, 424}, {centreX + 37, 424}}, 12, colour(0x2F2F35));
}

} // namespace

Data portraitJPEG(const PortraitLook& look) {
    PictureCanvas canvas(320, 320);
    const Colour background = colour(look.background);
    canvas.verticalGradient(0, 900, {{0, mixed(background, colour(0xFFFFFF), 0.35)}, {1, background}});
    canvas.glow({centreX, 380}, 620, colour(0xFFFFFF, 0.45));
    drawBackHair(canvas, look);
    canvas.ellipse({centreX, 960}, 480, 260, colour(look.clothes));
    drawFace(canvas, look);
    if (look.hasBeard) drawBeard(canvas, look);
    drawFringe(canvas, look);
    if (look.hasGlasses) drawGlasses(canvas);
    return encodeJPEG(canvas, 86);
}

} // namespace quillbook::sample
