#include "shell/adapter/LocalizedTranslator.h"

#include "core/text/Localization.h"
#include "shell/adapter/Words.h"

namespace quillbook {

QString LocalizedTranslator::translate(const char* /*context*/, const char* sourceText,
                                       const char* /*disambiguation*/, int /*n*/) const {
    return qtText(localized(sourceText));
}

} // namespace quillbook
