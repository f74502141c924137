#include "platform/AtomicFile.h"

#include "platform/FileError.h"
#include "platform/UUID.h"

#include <cstdio>

namespace quillbook {
namespace {

/// A hidden name beside the file's own, so that the rename stays within one folder and no listing of the
/// album shows it.
std::filesystem::path temporaryBeside(const std::filesystem::path& file) {
    return file.parent_path() / (".quillbook-" + uuidText());
}

} // namespace

AtomicFile::AtomicFile(const std::filesystem::path& file, FileAccess access)
    : file_(file), temporary_(temporaryBeside(file)),
      writer_(std::make_unique<FileWriter>(temporary_, access)) {}

AtomicFile::~AtomicFile() {
    if (temporary_.empty()) return;
    writer_.reset();
    std::error_code ignored;
    std::filesystem::remove(temporary_, ignored);
}

void AtomicFile::write(std::string_view text) {
    writer_->write(text);
}

void AtomicFile::commit() {
    writer_->close();
    if (std::rename(temporary_.c_str(), file_.c_str()) != 0) {
        throw FileError::fromErrno(FileError::Action::rename, file_);
    }
    temporary_.clear();
}

void writeFileAtomically(const std::filesystem::path& file, std::string_view contents, FileAccess access) {
    AtomicFile target(file, access);
    target.write(contents);
    target.commit();
}

} // namespace quillbook
