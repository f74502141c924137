#pragma once

#include <string>

namespace quillbook {

/// The running operating system's version as people know it, as in "Debian GNU/Linux 12 (bookworm)".
std::string systemVersion();

} // namespace quillbook
