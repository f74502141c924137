#pragma once

#include "export/ExportCoordinator.h"
#include "tests/export/FakeLoader.h"
#include "tests/support/TemporaryFolder.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace quillbook::test {

/// Flushes nothing, notes what it was asked, and can do something at that moment.
class FakeDurableFiles final : public DurableFiles {
public:
    void flushTree(const std::filesystem::path& folder) override {
        calls.push_back("tree " + folder.filename().string().substr(0, 19));
        onFlushTree();
    }
    void flushFolder(const std::filesystem::path& folder) override {
        calls.push_back("folder " + folder.filename().string());
        onFlushFolder();
    }

    std::vector<std::string> calls;
    std::function<void()> onFlushTree = [] {};
    std::function<void()> onFlushFolder = [] {};
};

/// A source with a conversation, an empty destination and an exporter between them, at 2024-05-01 12:34:56 in
/// UTC.
struct ExportFixture {
    explicit ExportFixture(ArchiveConversation conversation);

    /// A file of the source under a stored path of the same name.
    void addFile(const std::string& storedPath, std::string_view contents);
    ExportEnvironment environment() const;
    /// Exports with the options, collecting the reports.
    ExportResult run(std::stop_token stop = {});
    /// Names of everything that stands at the top of the destination, ascending.
    std::vector<std::string> destinationEntries() const;

    TemporaryFolder folder;
    std::filesystem::path destination;
    std::shared_ptr<FakeLoader> loader;
    std::shared_ptr<FakeDurableFiles> durableFiles = std::make_shared<FakeDurableFiles>();
    DateText dateText{"en_US", "UTC"};
    CloneFunction clone = [](const auto&, const auto&) { return false; };
    ExportOptions options{.includeJSON = false, .includeMarkdown = false, .includeCSV = false};
    std::vector<ExportProgress> reports;
    std::function<void(const ExportProgress&)> onReport = [](const ExportProgress&) {};
};

/// Names of everything that stands at the top of a folder, ascending; empty where there is no such folder.
std::vector<std::string> entriesOf(const std::filesystem::path& folder);

/// Every visible regular file below a folder, relative to it, ascending.
std::vector<std::string> visibleFiles(const std::filesystem::path& folder);

/// What is wrong with an album by its own manifest: a file that is absent, other than listed or not listed.
/// Empty for a sound one.
std::string albumDefect(const std::filesystem::path& album);

} // namespace quillbook::test
