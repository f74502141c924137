#include "core/text/Localization.h"

#include <utility>

namespace quillbook {
namespace {

std::function<std::string(std::string_view)>& translationInUse() {
    static std::function<std::string(std::string_view)> translation;
    return translation;
}

} // namespace

std::string localized(std::string_view english) {
    const auto& translation = translationInUse();
    return translation ? translation(english) : std::string(english);
}

void useTranslation(std::function<std::string(std::string_view english)> translation) {
    translationInUse() = std::move(translation);
}

} // namespace quillbook
