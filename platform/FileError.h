#pragma once

#include "core/records/DescribedError.h"

#include <filesystem>
#include <system_error>

namespace quillbook {

/// A failed operation on a file or folder, with the system's reason.
class FileError final : public DescribedError {
public:
    enum class Action { open, create, read, write, rename, list, remove, createFolder };

    FileError(Action action, std::filesystem::path file, std::error_code code);
    /// With the reason that `errno` holds now.
    static FileError fromErrno(Action action, std::filesystem::path file);

    std::string description() const override;

    Action action;
    std::filesystem::path file;
    std::error_code code;
};

} // namespace quillbook
