#include "recovery/CachedFile.h"
#include "recovery/CloudKitCacheRecoveryService.h"
#include "store/AttachmentPaths.h"
#include "tests/recovery/RecoveryRecords.h"
#include "tests/support/TemporaryFolder.h"

#include <algorithm>
#include <iterator>
#include <random>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

namespace fs = std::filesystem;
using test::TemporaryFolder;

/// The plain rule, a pass over every cached file for each record, which the search must agree with.
class PlainSearch {
public:
    explicit PlainSearch(const std::vector<fs::path>& roots) {
        for (const fs::path& root : roots)
            addBelow(root);
    }

    RecoveryReport report(const std::vector<MissingAttachmentRecord>& missing) const {
        RecoveryReport report;
        for (const MissingAttachmentRecord& record : missing) {
            auto matches = matchesOf(record);
            std::sort(matches.begin(), matches.end());
            const auto destination = normalizedMessagesPath(record.filename);
            if (matches.empty() || !destination) {
                ++report.unmatchedCount;
            } else {
                report.candidates.push_back(
                    {record, matches.front(), *destination, *record.totalBytes, matches.size() > 1});
            }
        }
        return report;
    }

private:
    void addBelow(const fs::path& folder) {
        std::error_code failure;
        for (const auto& entry : fs::directory_iterator(folder, failure)) {
            if (entry.path().filename().native().front() == '.' || entry.is_symlink()) continue;
            if (entry.is_directory()) addBelow(entry.path());
            if (!entry.is_regular_file() || entry.file_size() < 1) continue;
            files_.push_back({entry.path(), static_cast<std::int64_t>(entry.file_size()),
                              entry.path().filename().string()});
        }
    }

    std::vector<std::string> matchesOf(const MissingAttachmentRecord& record) const {
        std::set<std::string> names;
        names.insert(fs::path(record.transferName.value_or("")).filename().string());
        names.insert(fs::path(record.filename).filename().string());
        names.erase("");
        std::vector<std::string> matches;
        for (const CachedFile& file : files_) {
            if (names.count(file.basename) != 0 && file.size == record.totalBytes.value_or(0))
                matches.push_back(file.url.native());
        }
        return matches;
    }

    std::vector<CachedFile> files_;
};

/// A small folder in which names and sizes meet often.
class RandomCache {
public:
    explicit RandomCache(std::uint32_t seed) : random_(seed) {
        fs::create_directories(folder_ / "cache");
        std::vector<fs::path> folders{"cache"};
        for (int count = 0; count < 30; ++count)
            addEntry(folders);
    }

    std::vector<fs::path> roots() const {
        // One lies in another, so that its files count twice, and one is not there.
        return {folder_ / "cache", folder_ / "missing", folder_ / "cache/a"};
    }

    MissingAttachmentRecord record() {
        static const std::vector<std::string> folders = {"", "~/Library/Messages/Attachments/", "/tmp/",
                                                         "../", "x/../"};
        auto record = test::missing(pick(folders) + pick(names()), number(5) - 1);
        if (number(3) == 0) record.transferName = pick(names());
        if (number(6) == 0) record.filename = pick(std::vector<std::string>{"", "a/..", "/", ".."});
        if (number(6) == 0) record.totalBytes.reset();
        return record;
    }

private:
    int number(int limit) { return std::uniform_int_distribution(0, limit - 1)(random_); }
    template <typename Values>
    const typename Values::value_type& pick(const Values& values) {
        return values[static_cast<std::size_t>(number(static_cast<int>(values.size())))];
    }

    /// Forms of one letter that differ in bytes, differences in case, hidden names and the like.
    static const std::vector<std::string>& names() {
        static const std::vector<std::string> all = {
            "a", "A", "b.jpg", "B.JPG", "\xc3\xa9.jpg", "e\xcc\x81.jpg", ".h", "a!", "\xff"};
        return all;
    }

    void addEntry(std::vector<fs::path>& folders) {
        const fs::path entry = pick(folders) / pick(names());
        std::error_code taken;
        switch (number(8)) {
        case 0:
        case 1:
        case 2:
            if (fs::create_directory(folder_ / entry.native(), taken)) folders.push_back(entry);
            return;
        case 3:
            fs::create_symlink(pick(std::vector<std::string>{"..", "a", ".", "b.jpg", "nowhere"}),
                               folder_ / entry.native(), taken);
            return;
        default:
            if (!fs::exists(fs::symlink_status(folder_ / entry.native())))
                folder_.write(entry.native(), std::string(static_cast<std::size_t>(number(4)), 'x'));
        }
    }

    std::mt19937 random_;
    TemporaryFolder folder_;
};

TEST(CacheSearchProperty, givesWhatThePlainRuleGivesOnRandomCaches) {
    std::size_t candidates = 0;
    std::size_t ambiguous = 0;
    for (std::uint32_t seed = 0; seed < 150; ++seed) {
        RandomCache cache(seed);
        std::vector<MissingAttachmentRecord> records;
        for (int count = 0; count < 40; ++count)
            records.push_back(cache.record());
        const auto expected = PlainSearch(cache.roots()).report(records);
        const auto found = CloudKitCacheRecoveryService(cache.roots()).findRecoverable(records);
        ASSERT_EQ(found, expected) << "seed " << seed;
        ASSERT_EQ(found.candidates.size() + static_cast<std::size_t>(found.unmatchedCount), records.size());
        candidates += found.candidates.size();
        ambiguous += static_cast<std::size_t>(std::count_if(found.candidates.begin(), found.candidates.end(),
                                                            [](const auto& each) { return each.ambiguous; }));
    }
    // The caches hold something to agree on.
    EXPECT_GT(candidates, 150U);
    EXPECT_GT(ambiguous, 50U);
    EXPECT_LT(ambiguous, candidates - 50);
}

} // namespace
} // namespace quillbook
