#pragma once

#include <string>
#include <string_view>

namespace quillbook {

/// Appends an album path as a link has it: all but the unreserved characters of RFC 3986, section 2.3, and
/// the slash is percent-encoded byte by byte.
void appendPercentEncoded(std::string& link, std::string_view path);

} // namespace quillbook
