#pragma once

#include <cstddef>
#include <string_view>

namespace quillbook {

/// What a list may have in bytes where its caller does not say: plenty for what lies inside a database row.
inline constexpr std::size_t longestPropertyList = std::size_t{16} << 20U;

/// Whether libplist may be given these bytes. It builds a whole tree by recursion, repeats what is shared,
/// and compares the keys of an XML dictionary with each other, so a file of a few hundred bytes can exhaust
/// the stack or the memory, and a larger one can take hours. These say yes only to a property list of modest
/// nesting whose tree is not much larger than itself (five times, for long ones) and that is read in about a
/// second; they say no within microseconds to bytes that are no property list of their kind.
bool isSafeBinaryPropertyList(std::string_view bytes, std::size_t maximumBytes = longestPropertyList);
/// Knows only the form that Apple's writers produce, to its end: no comments, no CDATA, attributes at the
/// root alone.
bool isSafeXMLPropertyList(std::string_view bytes, std::size_t maximumBytes = longestPropertyList);

/// The bytes behind a UTF-8 byte order mark, which libplist does not know.
std::string_view withoutByteOrderMark(std::string_view bytes);

} // namespace quillbook
