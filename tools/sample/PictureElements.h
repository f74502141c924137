#pragma once

#include "tools/sample/PictureCanvas.h"
#include "tools/writing/DeterministicRandom.h"

namespace quillbook::sample {

/// What several pictures are made of. Units are those of PictureCanvas.
struct WaterColours {
    Colour far;
    Colour near;
    Colour glint;
};

/// A wall above, a table of planks below.
void drawTable(PictureCanvas& canvas, Colour wall, Colour table);
/// A range of hills from edge to edge; `roughness` is the height of its waves. Filled down to `bottom`.
void drawRidge(PictureCanvas& canvas, DeterministicRandom& random, double top, double roughness,
               double bottom, Colour fill);
void drawWater(PictureCanvas& canvas, DeterministicRandom& random, double top, double bottom,
               const WaterColours& colours);
void drawCloud(PictureCanvas& canvas, DeterministicRandom& random, Point centre, double size, Colour fill);
void drawStars(PictureCanvas& canvas, DeterministicRandom& random, int count, double bottom);
void drawFir(PictureCanvas& canvas, Point foot, double size, Colour fill);
void drawFirRow(PictureCanvas& canvas, DeterministicRandom& random, double foot, double size, Colour fill);
void drawLeafTree(PictureCanvas& canvas, DeterministicRandom& random, Point foot, double size, Colour leaves);
void drawFlower(PictureCanvas& canvas, Point centre, double radius, int petals, Colour petal, Colour heart);
void drawJetty(PictureCanvas& canvas, double shoreY, Colour wood);
void drawRowingBoat(PictureCanvas& canvas, Point centre, double size, Colour hull);
void drawCabin(PictureCanvas& canvas, Point foot, double size, Colour wall, Colour roof, Colour windowLight);

} // namespace quillbook::sample
