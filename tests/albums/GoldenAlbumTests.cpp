#include "core/records/RecordsJSON.h"
#include "core/text/DateText.h"
#include "export/ExportCoordinator.h"
#include "store/LocalLibraryAttachmentLocator.h"
#include "store/MessagesRepository.h"
#include "tests/support/FolderSnapshot.h"
#include "tests/support/TemporaryFolder.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <set>

#include <gtest/gtest.h>
#include <sqlite3.h>

// A case is a folder: library.sql makes its database, the files below "Messages" stand beside it,
// identities.json names its people, and "album" is what an export of chat 1 must give, byte for byte. With
// QUILLBOOK_WRITE_GOLDEN_ALBUMS set, the run writes the expected albums anew instead of comparing.

namespace quillbook {
namespace {

namespace fs = std::filesystem;

class NamedContacts final : public ContactResolving {
public:
    explicit NamedContacts(const fs::path& file) {
        const JSONDocument document(test::readFile(file));
        for (const JSONValue& entry : document.root().elements()) {
            ContactIdentity identity{.displayName = entry.required("name").text()};
            if (const auto picture = entry.optional("picture")) identity.avatarData = picture->data();
            if (identity.avatarData) identity.avatarMimeType = entry.required("mimeType").text();
            identities_[entry.required("address").text()] = identity;
        }
    }
    ContactIdentities resolve(const std::vector<std::string>& /*addresses*/) override { return identities_; }

private:
    ContactIdentities identities_;
};

/// The library's reader, but for the two fields that differ from run to run.
class FixedMoment final : public ConversationLoading {
public:
    explicit FixedMoment(std::shared_ptr<ConversationLoading> loader) : loader_(std::move(loader)) {}
    ArchiveConversation loadConversation(const SourceID& id, std::stop_token stop) override {
        ArchiveConversation conversation = loader_->loadConversation(id, stop);
        conversation.generatedAt = Date{800'000'000};
        conversation.sourceSystemVersion = "A system 1.0";
        return conversation;
    }
    std::optional<fs::path> locateAttachment(const std::string& storedPath) override {
        return loader_->locateAttachment(storedPath);
    }
    void releaseAttachment(const fs::path& file) override { loader_->releaseAttachment(file); }

private:
    std::shared_ptr<ConversationLoading> loader_;
};

void makeDatabase(const fs::path& file, const std::string& sql) {
    sqlite3* handle = nullptr;
    ASSERT_EQ(sqlite3_open(file.c_str(), &handle), SQLITE_OK);
    char* problem = nullptr;
    sqlite3_exec(handle, sql.c_str(), nullptr, nullptr, &problem);
    EXPECT_EQ(problem, nullptr) << problem;
    sqlite3_close(handle);
}

fs::path casesFolder() {
    const char* source = std::getenv("QUILLBOOK_SOURCE");
    return fs::path(source == nullptr ? "." : source) / "tests/albums";
}

std::vector<std::string> caseNames() {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(casesFolder())) {
        if (entry.is_directory()) names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

fs::path exportCase(const fs::path& folder, const test::TemporaryFolder& place) {
    const fs::path root = place / "Library/Messages";
    fs::create_directories(root);
    if (fs::exists(folder / "Messages")) fs::copy(folder / "Messages", root, fs::copy_options::recursive);
    makeDatabase(root / "chat.db", test::readFile(folder / "library.sql"));
    auto repository = std::make_shared<MessagesRepository>(
        root / "chat.db", std::make_shared<LocalLibraryAttachmentLocator>(root, place.path()),
        std::make_shared<NamedContacts>(folder / "identities.json"));
    static const DateText dates("en_US", "Europe/Berlin");
    ExportEnvironment environment = ExportEnvironment::user();
    environment.dateText = &dates;
    environment.webArchive.preferredLanguages = {"en"};
    ExportCoordinator coordinator(std::make_shared<FixedMoment>(repository), environment);
    const ExportOptions everything{.includeJSON = true, .includeMarkdown = true, .includeCSV = true};
    return coordinator.exportConversation(SourceID{"1"}, place / "Albums", everything, [](const auto&) {}, {})
        .archiveURL;
}

/// The website's own files change with its design, and with them the lines that the manifest has for them;
/// the rest may never change unnoticed.
bool isCompared(const std::string& path) {
    static const std::set<std::string> website = {"index.html", "assets/styles.css", "assets/app.js",
                                                  "manifest.json"};
    return !website.contains(path);
}

std::map<std::string, std::string> contentsOf(const fs::path& album) {
    std::map<std::string, std::string> contents;
    for (const auto& [path, entry] : test::snapshotOf(album)) {
        if (entry.type == fs::file_type::regular && isCompared(path)) contents[path] = entry.contents;
    }
    return contents;
}

void writeExpected(const fs::path& expected, const fs::path& album) {
    fs::remove_all(expected);
    for (const auto& [path, bytes] : contentsOf(album)) {
        fs::create_directories((expected / path).parent_path());
        std::ofstream(expected / path, std::ios::binary) << bytes;
    }
}

class GoldenAlbum : public testing::TestWithParam<std::string> {};

TEST_P(GoldenAlbum, isWhatTheCaseExpectsByteForByte) {
    const fs::path folder = casesFolder() / GetParam();
    const test::TemporaryFolder place;
    const fs::path album = exportCase(folder, place);
    if (std::getenv("QUILLBOOK_WRITE_GOLDEN_ALBUMS") != nullptr) writeExpected(folder / "album", album);
    const auto expected = contentsOf(folder / "album");
    const auto written = contentsOf(album);
    EXPECT_FALSE(expected.empty());
    for (const auto& [path, bytes] : expected) {
        EXPECT_TRUE(written.contains(path)) << path << " is missing";
        if (written.contains(path)) {
            EXPECT_EQ(written.at(path), bytes) << path;
        }
    }
    for (const auto& [path, bytes] : written)
        EXPECT_TRUE(expected.contains(path)) << path << " is unexpected";
}

INSTANTIATE_TEST_SUITE_P(Cases, GoldenAlbum, testing::ValuesIn(caseNames()),
                         [](const auto& test) { return test.param; });

TEST(GoldenAlbums, exist) {
    EXPECT_GE(caseNames().size(), 2U);
}

} // namespace
} // namespace quillbook
