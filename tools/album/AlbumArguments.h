#pragma once

#include "core/records/DescribedError.h"
#include "core/records/ExportOptions.h"

#include <filesystem>
#include <optional>
#include <span>
#include <string>

namespace quillbook::tools {

/// A command line that makes no sense.
class UsageError final : public DescribedError {
public:
    explicit UsageError(std::string problem) : problem_(std::move(problem)) {}
    std::string description() const override;

private:
    std::string problem_;
};

/// What the command line of quillbook-album asks for.
struct AlbumArguments {
    std::optional<std::filesystem::path> home;     ///< Stands for the user's home folder everywhere.
    std::optional<std::filesystem::path> contacts; ///< A file of vCards that serves as the address book.
    std::string command;
    std::optional<std::string> source;
    std::optional<std::filesystem::path> passwordFile;
    std::optional<std::string> search;
    std::optional<std::string> conversation;
    std::optional<std::filesystem::path> destination;
    ExportOptions options{.includeJSON = false, .includeMarkdown = false, .includeCSV = false};
    bool showsProgress = false;

    /// Without the program's name. Throws UsageError.
    static AlbumArguments parse(std::span<const char* const> words);
};

} // namespace quillbook::tools
