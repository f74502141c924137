#include "export/ExportCoordinator.h"

#include "core/records/Cancellation.h"
#include "core/text/Localization.h"
#include "export/AlbumInventory.h"
#include "export/ArchiveManifest.h"
#include "export/CSVTranscript.h"
#include "export/JSONFile.h"
#include "export/MarkdownTranscript.h"
#include "export/StagingFolder.h"
#include "platform/FileError.h"

#include <algorithm>
#include <utility>

namespace quillbook {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t photoPreviewCount = 5;
constexpr std::int64_t writingSteps = 4;

std::int64_t countAttachments(const ArchiveConversation& conversation) {
    std::int64_t count = 0;
    for (const auto& message : conversation.messages)
        count += static_cast<std::int64_t>(message.attachments.size());
    return count;
}

/// The first place in `destination` for an album of that name where nothing stands; " — 2" and so on behind a
/// name that is taken.
fs::path freeAlbumPlace(const fs::path& destination, const std::string& name) {
    const auto isTaken = [](const fs::path& place) {
        std::error_code failure; // a place that cannot be looked at shows its failure when the folder is made
        return fs::exists(fs::symlink_status(place, failure));
    };
    fs::path place = destination / name;
    for (std::int64_t number = 2; isTaken(place); ++number) {
        place = destination / (name + " — " + std::to_string(number));
    }
    return place;
}

std::vector<fs::path> photoPreviews(const ArchiveConversation& conversation, const fs::path& album) {
    std::vector<fs::path> previews;
    for (const auto& message : conversation.messages) {
        for (const auto& attachment : message.attachments) {
            if (previews.size() == photoPreviewCount) return previews;
            const bool isPicture = attachment.mimeType.value_or("").starts_with("image/");
            const bool isAvailable = attachment.availability == AttachmentAvailability::available;
            if (isPicture && isAvailable && attachment.archivePath)
                previews.push_back(album / *attachment.archivePath);
        }
    }
    return previews;
}

/// One export on its road from the first report to the last. The references outlive it.
class RunningExport {
public:
    RunningExport(ConversationLoading& loader, const ExportEnvironment& environment,
                  const fs::path& destination, const ExportOptions& options, const ProgressCallback& progress,
                  const std::stop_token& stop)
        : loader_(loader), environment_(environment), destination_(destination), options_(options),
          progress_(progress), stop_(stop), copier_(environment.clone) {}

    ExportResult run(const SourceID& conversationID) {
        report(ExportStage::preparing, 0, 1, localized("Preparing export"));
        conversation_ = loader_.loadConversation(conversationID, stop_);
        throwIfCancelled(stop_);
        removeStaleStagingFolders(destination_);
        const std::string stamp = environment_.dateText->fileNameStamp(environment_.now());
        const fs::path album =
            freeAlbumPlace(destination_, safeFolderTitle(conversation_.title) + " — " + stamp);
        StagingFolder staging(destination_);
        copyAttachments(staging, ArchiveReuseIndex(destination_, conversationID, stop_));
        throwIfCancelled(stop_);
        writeWebsite(staging);
        writeTranscripts(staging.path());
        writeManifest(staging.path());
        environment_.durableFiles->flushTree(staging.path());
        throwIfCancelled(stop_);
        finish(staging, album);
        return result(album);
    }

private:
    void report(ExportStage stage, std::int64_t completed, std::int64_t total, std::string detail) const {
        progress_(ExportProgress{
            .stage = stage, .completed = completed, .total = total, .detail = std::move(detail)});
    }

    void copyAttachments(const StagingFolder& staging, const ArchiveReuseIndex& reuseIndex) {
        const std::int64_t total = countAttachments(conversation_);
        std::int64_t handled = 0;
        for (auto& message : conversation_.messages) {
            for (auto& attachment : message.attachments) {
                throwIfCancelled(stop_);
                attachment = settled(attachment, staging, reuseIndex);
                if (attachment.availability == AttachmentAvailability::available) {
                    ++copied_;
                } else {
                    conversation_.warnings.push_back(attachmentWarning(attachment));
                }
                report(ExportStage::copyingAttachments, ++handled, total, attachment.displayName);
            }
        }
    }

    /// The attachment's record after its file was fetched from the source and copied, as far as there is one.
    ArchiveAttachment settled(const ArchiveAttachment& attachment, const StagingFolder& staging,
                              const ArchiveReuseIndex& reuseIndex) {
        std::optional<fs::path> source;
        if (!attachment.originalFilename.value_or("").empty()) {
            source = loader_.locateAttachment(*attachment.originalFilename);
        }
        if (!source) return withoutFile(attachment, AttachmentAvailability::missing);
        staging.requireInPlace();
        auto record =
            copier_.copyAttachment(attachment, *source, staging.path() / "attachments", &reuseIndex, stop_);
        loader_.releaseAttachment(*source);
        return record;
    }

    void writeWebsite(const StagingFolder& staging) {
        report(ExportStage::writingArchive, 0, writingSteps, localized("Writing offline website"));
        staging.requireInPlace();
        writeAvatarAssets(conversation_, staging.path());
        writeWebArchive(conversation_, staging.path(), environment_.webArchive);
        writeFileAtomically(staging.path() / "Open Album.html", openAlbumPage);
        written_ = {"index.html", "Open Album.html"};
    }

    void writeTranscripts(const fs::path& root) {
        if (options_.includeJSON) {
            throwIfCancelled(stop_);
            writeJSONFile(root / written_.emplace_back("transcript.json"), conversation_);
        }
        report(ExportStage::writingArchive, options_.includeJSON ? 2 : 1, writingSteps,
               localized("Writing transcripts"));
        if (options_.includeMarkdown) {
            throwIfCancelled(stop_);
            writeMarkdownTranscript(conversation_, root / written_.emplace_back("transcript.md"),
                                    *environment_.dateText);
        }
        if (options_.includeCSV) {
            throwIfCancelled(stop_);
            writeCSVTranscript(conversation_, root / written_.emplace_back("transcript.csv"));
        }
    }

    void writeManifest(const fs::path& root) const {
        auto files = makeManifestFiles(root, stop_);
        requireEveryFile(conversation_, written_, files, root);
        const auto messageCount = static_cast<std::int64_t>(conversation_.messages.size());
        const std::int64_t recordCount = countAttachments(conversation_);
        writeJSONFile(root / manifestFileName, ArchiveManifest{
                                                   .conversationTitle = conversation_.title,
                                                   .sourceChatID = conversation_.id,
                                                   .generatedAt = conversation_.generatedAt,
                                                   .sourceMessageCount = conversation_.sourceMessageCount,
                                                   .availableMessageCount = messageCount,
                                                   .messageCount = messageCount,
                                                   .attachmentRecordCount = recordCount,
                                                   .copiedAttachmentCount = copied_,
                                                   .missingAttachmentCount = recordCount - copied_,
                                                   .warnings = conversation_.warnings,
                                                   .files = std::move(files),
                                               });
    }

    void finish(StagingFolder& staging, const fs::path& album) const {
        report(ExportStage::finalizing, 0, 1, localized("Finalizing archive"));
        staging.moveTo(album);
        try {
            environment_.durableFiles->flushFolder(destination_);
        } catch (const FileError&) {
            // The album stands, whole and readable, and its files are on the disk; only its new name may not
            // be yet. Were this an error, the user would be told of a failure and find a finished album.
        }
        report(ExportStage::finalizing, 1, 1, localized("Export complete"));
    }

    ExportResult result(const fs::path& album) {
        return ExportResult{
            .archiveURL = album,
            .messageCount = static_cast<std::int64_t>(conversation_.messages.size()),
            .attachmentCount = copied_,
            .attachmentRecordCount = countAttachments(conversation_),
            .warnings = std::move(conversation_.warnings),
            .reusedAttachmentCount = copier_.reusedCount(),
            .photoPreviewURLs = photoPreviews(conversation_, album),
        };
    }

    ConversationLoading& loader_;
    const ExportEnvironment& environment_;
    const fs::path& destination_;
    const ExportOptions& options_;
    const ProgressCallback& progress_;
    const std::stop_token& stop_;
    ArchiveConversation conversation_;
    AttachmentCopier copier_;
    std::int64_t copied_ = 0;
    std::vector<std::string> written_; ///< Files that stand in every album of these options, relative to it.
};

} // namespace

ExportEnvironment ExportEnvironment::user() {
    return ExportEnvironment{
        .webArchive = WebArchiveSettings::user(),
        .durableFiles = std::make_shared<SystemDurableFiles>(),
        .now = [] { return Date::now(); },
        .dateText = &DateText::user(),
        .clone = cloneFile,
    };
}

ExportCoordinator::ExportCoordinator(std::shared_ptr<ConversationLoading> loader,
                                     ExportEnvironment environment)
    : loader_(std::move(loader)), environment_(std::move(environment)) {}

ExportResult ExportCoordinator::exportConversation(const SourceID& conversationID,
                                                   const fs::path& destination, const ExportOptions& options,
                                                   const ProgressCallback& progress, std::stop_token stop) {
    return RunningExport(*loader_, environment_, destination, options, progress, stop).run(conversationID);
}

} // namespace quillbook
