#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace quillbook::test {

/// The rows of a CSV file as Python's csv module reads them, in its strict form; the byte order mark is not
/// part of them.
std::vector<std::vector<std::string>> rowsReadByPython(const std::filesystem::path& csv);

} // namespace quillbook::test
