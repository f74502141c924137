#include "tools/sample/MediaPictures.h"

namespace quillbook::sample {

Painter painterNamed(std::string_view name) {
    for (const auto subject :
         {lakePainter, naturePainter, townPainter, tablePainter, gardenPainter, thingPainter, bookPainter}) {
        if (const Painter painter = subject(name)) return painter;
    }
    return nullptr;
}

} // namespace quillbook::sample
