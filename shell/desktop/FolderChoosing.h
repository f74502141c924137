#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace quillbook {

struct FolderQuestion {
    std::string title;
    std::string prompt;           ///< The words of the accepting button.
    std::filesystem::path folder; ///< Where the dialog opens.
};

/// The desktop's dialog for choosing one existing or new folder, modal to the window. Main thread only.
class FolderChoosing {
public:
    using Answer = std::function<void(std::optional<std::filesystem::path>)>;

    virtual ~FolderChoosing() = default;
    /// Answers once, on the main thread, never within the call: the chosen folder, or nothing where the user
    /// chose none. A question asked while another is open is answered with nothing.
    virtual void chooseFolder(const FolderQuestion& question, Answer answer) = 0;
};

} // namespace quillbook
