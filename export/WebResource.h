#pragma once

#include "core/records/DescribedError.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillbook {

/// The website of an album could not be laid out.
class WebArchiveError final : public DescribedError {
public:
    explicit WebArchiveError(std::string fileName) : missingResource(std::move(fileName)) {}
    std::string description() const override;

    std::string missingResource; ///< File name of the resource that no place holds.
};

/// The whole text of one of the website's resources: from the first of the folders that holds the file in its
/// "Web" folder or in itself. Throws WebArchiveError where none does, FileError where the file cannot be read
/// or is no UTF-8.
std::string loadWebResource(std::string_view name, std::string_view extension,
                            const std::vector<std::filesystem::path>& folders);

} // namespace quillbook
