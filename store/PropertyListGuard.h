#pragma once

#include <string_view>

namespace quillbook {

/// Whether libplist may be given these bytes. It builds a whole tree by recursion and repeats what is shared,
/// so a file of a few hundred bytes can exhaust the stack or the memory. These say yes only to a property
/// list of modest nesting whose tree is not much larger than itself; they say no within microseconds to bytes
/// that are no property list of their kind.
bool isSafeBinaryPropertyList(std::string_view bytes);
/// Knows only the form that Apple's writers produce: no comments, no CDATA, attributes at the root alone.
bool isSafeXMLPropertyList(std::string_view bytes);

/// The bytes behind a UTF-8 byte order mark, which libplist does not know.
std::string_view withoutByteOrderMark(std::string_view bytes);

} // namespace quillbook
