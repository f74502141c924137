#include "platform/FileWriter.h"

#include "platform/FileError.h"

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace quillbook {

using Action = FileError::Action;

FileWriter::FileWriter(const std::filesystem::path& file)
    // Without O_NONBLOCK, opening a pipe would wait for its reader.
    : file_(file),
      descriptor_(
          ::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0666)) {
    if (descriptor_ < 0) throw FileError::fromErrno(Action::create, file);
}

FileWriter::~FileWriter() {
    if (descriptor_ >= 0) ::close(descriptor_);
}

void FileWriter::write(std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor_, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) throw FileError::fromErrno(Action::write, file_);
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
}

void FileWriter::write(std::string_view text) {
    write(std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

void FileWriter::close() {
    const int descriptor = descriptor_;
    descriptor_ = -1;
    if (::close(descriptor) != 0) throw FileError::fromErrno(Action::write, file_);
}

} // namespace quillbook
