#include "propertylist/PropertyListError.h"

#include "core/text/Localization.h"
#include "core/text/UTF8.h"

#include <utility>

namespace quillbook {

PropertyListError::PropertyListError(std::string unreadableList) : name(std::move(unreadableList)) {}

std::string PropertyListError::description() const {
    return localizedFormat("The property list “{}” could not be read.", repairedUTF8(name));
}

} // namespace quillbook
