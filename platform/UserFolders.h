#pragma once

#include <filesystem>
#include <optional>

namespace quillbook {

/// The user's folders. `home` may be another one than the process's own, and every other folder then follows
/// it.
struct UserFolders {
    std::filesystem::path home;
    std::filesystem::path applicationSupport; ///< XDG_DATA_HOME, else ".local/share" below the home folder.
    std::optional<std::filesystem::path>
        downloads; ///< As user-dirs.dirs has it, else "Downloads" where it exists.

    /// The folders of the user who runs the process: HOME, else the password database.
    static UserFolders current();
    /// The folders below a given home folder, whatever the environment says.
    static UserFolders below(const std::filesystem::path& home);
};

/// Where temporary files go: TMPDIR, else /tmp.
std::filesystem::path temporaryFolder();

} // namespace quillbook
