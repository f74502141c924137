#include "core/text/Localization.h"

namespace quillbook {

std::string localized(std::string_view english) {
    return std::string(english);
}

} // namespace quillbook
