#pragma once

#include "core/interfaces/ConversationLoading.h"
#include "core/interfaces/ExportRunning.h"
#include "export/ExportEnvironment.h"

#include <memory>
#include <string_view>

namespace quillbook {

/// Turns one conversation into one finished album: everything is written into a hidden staging folder, whose
/// renaming is the last act, so that a destination holds a whole album or none. Keeps nothing between
/// exports; safe to call from any thread.
class ExportCoordinator final : public ExportRunning {
public:
    explicit ExportCoordinator(std::shared_ptr<ConversationLoading> loader,
                               ExportEnvironment environment = ExportEnvironment::user());

    ExportResult exportConversation(const SourceID& conversationID, const std::filesystem::path& destination,
                                    const ExportOptions& options, const ProgressCallback& progress,
                                    std::stop_token stop) override;

private:
    std::shared_ptr<ConversationLoading> loader_;
    ExportEnvironment environment_;
};

/// "Open Album.html" of each album: a name that a person recognises among those of the machine-readable
/// files.
inline constexpr std::string_view openAlbumPage =
    "<!doctype html><meta charset=\"utf-8\">\n"
    "<meta http-equiv=\"refresh\" content=\"0; url=index.html\">\n"
    "<title>Open Album</title>\n"
    "<p><a href=\"index.html\">Open the album</a></p>";

} // namespace quillbook
