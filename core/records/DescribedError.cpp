#include "core/records/DescribedError.h"

namespace quillbook {

const char* DescribedError::what() const noexcept {
    try {
        words_ = description();
        return words_.c_str();
    } catch (const std::exception&) {
        return "An error without words.";
    }
}

std::string describe(const std::exception& error) {
    const auto* described = dynamic_cast<const DescribedError*>(&error);
    return described != nullptr ? described->description() : error.what();
}

} // namespace quillbook
