#pragma once

#include "tools/sample/SampleLibrary.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace quillbook::sample::test {

/// The library that no options give, written once for all tests of the program.
const SampleReport& defaultLibrary();

/// The home folder of that library.
std::filesystem::path defaultHome();

/// The first column of all rows, as text; NULL gives "NULL". Throws std::runtime_error for a failing
/// statement.
std::vector<std::string> queryColumn(const std::filesystem::path& database, const std::string& sql);

/// The first column of the only row, as a number.
std::int64_t queryNumber(const std::filesystem::path& database, const std::string& sql);

/// Relative path to contents of every file below the folder.
std::map<std::string, std::string> filesBelow(const std::filesystem::path& folder);

/// The only file of the default library with that name.
std::string contentsOf(const std::string& fileName);

} // namespace quillbook::sample::test
