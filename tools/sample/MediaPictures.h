#pragma once

#include "tools/sample/PictureCanvas.h"
#include "tools/writing/DeterministicRandom.h"

#include <string_view>

namespace quillbook::sample {

using Painter = void (*)(PictureCanvas& canvas, DeterministicRandom& random);

/// Who paints the picture of that name; null for an unknown name.
Painter painterNamed(std::string_view name);

/// The same, for the pictures of one subject.
Painter lakePainter(std::string_view name);
Painter naturePainter(std::string_view name);
Painter townPainter(std::string_view name);
Painter tablePainter(std::string_view name);
Painter gardenPainter(std::string_view name);
Painter thingPainter(std::string_view name);
Painter bookPainter(std::string_view name);

} // namespace quillbook::sample
