#include "tests/recovery/DeepFolders.h"

#include <cstring>
#include <stdexcept>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillbook::test {
namespace {

constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

/// Opens another folder and closes the one that led to it.
int goTo(int folder, const char* name) {
    const int next = ::openat(folder, name, folderFlags);
    ::close(folder);
    return next;
}

} // namespace

DeepFolders::DeepFolders(const std::filesystem::path& root, int depth, const std::function<void(int)>& fill)
    : root_(root) {
    int folder = ::open(root.c_str(), folderFlags);
    for (int level = 0; level < depth && folder >= 0; ++level) {
        if (::mkdirat(folder, "d", 0777) != 0) throw std::runtime_error("no folder could be made");
        folder = goTo(folder, "d");
        fill(folder);
    }
    if (folder < 0) throw std::runtime_error("a folder could not be opened");
    ::close(folder);
}

DeepFolders::~DeepFolders() {
    // Takes "d" of "d" out beside "d" until none is left: no way is ever longer than two folders.
    const int root = ::open(root_.c_str(), folderFlags);
    for (bool isLeft = true; isLeft;) {
        isLeft = ::renameat(root, "d/d", root, "inner") == 0;
        std::error_code ignored;
        std::filesystem::remove_all(root_ / "d", ignored);
        if (isLeft) ::renameat(root, "inner", root, "d");
    }
    ::close(root);
}

void writeAt(int folder, const char* name, const char* contents) {
    const int file = ::openat(folder, name, O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
    const auto length = std::strlen(contents);
    const bool isWritten = file >= 0 && ::write(file, contents, length) == static_cast<ssize_t>(length);
    ::close(file);
    if (!isWritten) throw std::runtime_error("a file could not be written");
}

} // namespace quillbook::test
