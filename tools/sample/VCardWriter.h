#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace quillbook::sample {

/// One property line of RFC 2426 (vCard 3.0), folded so that no line has more than 75 bytes and no character
/// is cut.
std::string vCardLine(std::string_view line);

/// Writes everyone who stands in an address book, most of them with a picture. Throws FileError and
/// SampleError.
void writeAddressBook(const std::filesystem::path& file);

} // namespace quillbook::sample
