#include "core/records/JSONWriter.h"
#include "export/ExportCoordinator.h"
#include "recovery/CloudKitCacheRecoveryService.h"
#include "store/ConversationStatements.h"
#include "store/MessagesRepository.h"
#include "store/StoredConversationReader.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>

// quillbook-probe WORK ARGUMENT …, one piece of work a run, so that its time and peak memory are those of a
// process, like those of the programs that it is compared with. Prints one JSON object: what the work found,
// and the seconds of it that count apart.

namespace quillbook {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

class NoContacts final : public ContactResolving {
public:
    ContactIdentities resolve(const std::vector<std::string>& /*addresses*/) override { return {}; }
};

class NoFiles final : public AttachmentLocating {
public:
    std::optional<fs::path> locate(const std::string& /*storedPath*/) override { return std::nullopt; }
    void release(const fs::path& /*file*/) override {}
};

/// Flushes as the application does, and measures how long.
class MeasuredFlush final : public DurableFiles {
public:
    void flushTree(const fs::path& folder) override {
        const auto start = Clock::now();
        files_.flushTree(folder);
        seconds += secondsSince(start);
    }
    void flushFolder(const fs::path& folder) override {
        const auto start = Clock::now();
        files_.flushFolder(folder);
        seconds += secondsSince(start);
    }
    double seconds = 0;

private:
    SystemDurableFiles files_;
};

/// A conversation whose one message has every file of a folder attached.
class FolderLoader final : public ConversationLoading {
public:
    explicit FolderLoader(fs::path folder) : folder_(std::move(folder)) {}
    ArchiveConversation loadConversation(const SourceID& id, std::stop_token /*stop*/) override {
        ArchiveConversation conversation{.id = id, .guid = "guid", .title = "Files"};
        ArchiveMessage& message = conversation.messages.emplace_back();
        message.guid = "message";
        for (const auto& entry : fs::directory_iterator(folder_)) {
            ArchiveAttachment& attachment = message.attachments.emplace_back();
            attachment.displayName = entry.path().filename().string();
            attachment.id.rawValue = attachment.displayName;
            attachment.originalFilename = entry.path().string();
        }
        return conversation;
    }
    std::optional<fs::path> locateAttachment(const std::string& storedPath) override { return storedPath; }
    void releaseAttachment(const fs::path& /*file*/) override {}

private:
    fs::path folder_;
};

std::shared_ptr<MessagesRepository> repository(const fs::path& database) {
    return std::make_shared<MessagesRepository>(database, std::make_shared<NoFiles>(),
                                                std::make_shared<NoContacts>());
}

struct Finding {
    std::int64_t count = 0;
    double flushSeconds = 0;
};

Finding exportAlbum(const std::shared_ptr<ConversationLoading>& loader, const fs::path& destination,
                    const ExportOptions& options) {
    const auto flush = std::make_shared<MeasuredFlush>();
    ExportEnvironment environment = ExportEnvironment::user();
    environment.durableFiles = flush;
    ExportCoordinator coordinator(loader, environment);
    const ExportResult result =
        coordinator.exportConversation(SourceID{"1"}, destination, options, [](const auto&) {}, {});
    return {result.messageCount, flush->seconds};
}

/// `count` missing attachments, every one of which a cache holds that has twenty times as many files: each
/// file's size, 1 to 4,096 bytes, goes by its number.
std::vector<MissingAttachmentRecord> missingAttachments(std::int64_t count) {
    std::vector<MissingAttachmentRecord> missing;
    for (std::int64_t number = 0; number < count; ++number) {
        const std::int64_t file = number * 20;
        const std::string digits = std::to_string(file);
        const std::string name =
            "IMG_" + std::string(7 - std::min<std::size_t>(digits.size(), 7), '0') + digits;
        missing.push_back(MissingAttachmentRecord{.rowID = number,
                                                  .filename = "~/Library/Messages/Attachments/" + name,
                                                  .transferName = name + ".jpg",
                                                  .totalBytes = file % 4'096 + 1});
    }
    return missing;
}

/// `arguments` are the number of records and the roots of the caches.
Finding findRecoverable(const std::vector<std::string>& arguments) {
    const auto missing = missingAttachments(std::atoll(arguments.at(0).c_str()));
    CloudKitCacheRecoveryService service({arguments.begin() + 1, arguments.end()});
    return {static_cast<std::int64_t>(service.findRecoverable(missing).candidates.size())};
}

Finding work(const std::string& name, const std::vector<std::string>& arguments) {
    if (name == "list") {
        return {static_cast<std::int64_t>(repository(arguments.at(0))->searchConversations("", {}).size())};
    }
    if (name == "search") {
        // A search needs the list; the list's share is measured by a run of its own.
        const auto store = repository(arguments.at(0));
        store->searchConversations("", {});
        const auto start = Clock::now();
        const auto found = store->searchConversations(arguments.at(1), {});
        return {static_cast<std::int64_t>(found.size()), secondsSince(start)};
    }
    if (name == "load") {
        const auto conversation = repository(arguments.at(0))->loadConversation(SourceID{"1"}, {});
        return {static_cast<std::int64_t>(conversation.messages.size())};
    }
    if (name == "export") {
        const ExportOptions everything{.includeJSON = true, .includeMarkdown = true, .includeCSV = true};
        return exportAlbum(repository(arguments.at(0)), arguments.at(1), everything);
    }
    if (name == "copy") {
        const ExportOptions nothing{.includeJSON = false, .includeMarkdown = false, .includeCSV = false};
        return exportAlbum(std::make_shared<FolderLoader>(arguments.at(0)), arguments.at(1), nothing);
    }
    if (name == "find-recoverable") return findRecoverable(arguments);
    throw std::invalid_argument("no such work: " + name);
}

void printStatements(const fs::path& database) {
    SQLiteDatabase connection(database);
    JSONWriter json([](std::string_view piece) { std::fwrite(piece.data(), 1, piece.size(), stdout); },
                    JSONForm::compact);
    json.beginObject();
    json.member("list", listStatement);
    json.member("messages", messageStatement(readMessageColumns(connection)));
    json.member("participants", participantStatement);
    json.member("search", searchStatement);
    json.endObject();
    json.finish();
}

int run(const std::vector<std::string>& words) {
    const std::string name = words.at(0);
    const std::vector<std::string> arguments(words.begin() + 1, words.end());
    if (name == "statements") {
        printStatements(arguments.at(0));
        return 0;
    }
    const Finding finding = work(name, arguments);
    std::printf("{\"count\": %lld, \"apart\": %.6f}\n", static_cast<long long>(finding.count),
                finding.flushSeconds);
    return 0;
}

} // namespace
} // namespace quillbook

int main(int count, char** words) {
    try {
        return quillbook::run({words + 1, words + count});
    } catch (const std::exception& error) {
        std::fprintf(stderr, "quillbook-probe: %s\n", error.what());
        return 1;
    }
}
