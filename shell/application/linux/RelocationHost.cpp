#include "shell/application/Relocation.h"

namespace quillbook {

/// Packages put the application where it stays, and no access depends on the place.
std::shared_ptr<RelocationHosting> relocationHost() {
    return nullptr;
}

} // namespace quillbook
