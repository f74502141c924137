#pragma once

#include "core/interfaces/AttachmentSurvey.h"
#include "core/interfaces/PriorArchiveSummary.h"
#include "core/records/ExportProgress.h"

#include <QObject>
#include <QString>
#include <filesystem>
#include <optional>
#include <string>

namespace quillbook {

/// The row that tells of attachments that are not on this machine.
struct StorageFacts {
    Q_GADGET
    Q_PROPERTY(bool isShown MEMBER isShown)
    Q_PROPERTY(QString text MEMBER text)
public:
    bool isShown = false;
    QString text;
};

/// Where albums are made.
struct FolderFacts {
    Q_GADGET
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString path MEMBER path)
public:
    QString name;
    QString path;
};

/// The earlier album of the conversation.
struct PriorArchiveFacts {
    Q_GADGET
    Q_PROPERTY(bool isShown MEMBER isShown)
    Q_PROPERTY(QString date MEMBER date)
    Q_PROPERTY(QString news MEMBER news)
    Q_PROPERTY(QString symbol MEMBER symbol)
public:
    bool isShown = false;
    QString date;
    QString news; ///< How many messages came since.
    QString symbol;
};

struct ProgressFacts {
    Q_GADGET
    Q_PROPERTY(QString heading MEMBER heading)
    Q_PROPERTY(QString detail MEMBER detail)
    Q_PROPERTY(QString stageLine MEMBER stageLine)
    Q_PROPERTY(double completed MEMBER completed)
    Q_PROPERTY(double total MEMBER total)
public:
    QString heading;
    QString detail;
    QString stageLine;
    double completed = 0;
    double total = 1;
};

StorageFacts storageFacts(const std::optional<AttachmentStorageSurvey>& survey);
FolderFacts folderFacts(const std::filesystem::path& folder);
PriorArchiveFacts priorArchiveFacts(const std::optional<PriorArchiveSummary>& prior,
                                    std::optional<std::int64_t> newMessages);
/// `title` is the selected conversation's, if there is one.
ProgressFacts progressFacts(const ExportProgress& progress, const std::optional<std::string>& title);

} // namespace quillbook
