#include "recovery/CloudKitCacheRecoveryService.h"
#include "recovery/RecoveryOverlayAttachmentLocator.h"
#include "store/LocalLibraryAttachmentLocator.h"
#include "tests/recovery/RecoveryRecords.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace quillbook {
namespace {

namespace fs = std::filesystem;
using test::TemporaryFolder;
using testing::ElementsAre;
using testing::IsEmpty;

/// Gives one file, or nothing, and remembers what it gets back.
class GivingLocator final : public AttachmentLocating {
public:
    std::optional<fs::path> locate(const std::string& /*storedPath*/) override { return file; }
    void release(const fs::path& released) override { releases.push_back(released); }

    std::optional<fs::path> file;
    std::vector<fs::path> releases;
};

class RecoveryOverlay : public testing::Test {
protected:
    RecoveryOverlay() { fs::create_directory(root()); }

    fs::path root() const { return folder_ / "root"; }
    fs::path recovered(const std::string& name) const { return folder_.write("root/" + name, "recovered"); }
    std::optional<fs::path> locate(const std::string& storedPath) { return locator_.locate(storedPath); }

    TemporaryFolder folder_;
    std::shared_ptr<GivingLocator> primary_ = std::make_shared<GivingLocator>();
    RecoveryOverlayAttachmentLocator locator_{primary_, folder_ / "root"};
};

TEST_F(RecoveryOverlay, givesTheRecoveredFileWherePrimaryGivesNothing) {
    const fs::path file = recovered("Attachments/aa/a.jpg");
    EXPECT_EQ(locate("~/Library/Messages/Attachments/aa/a.jpg"), file);
    EXPECT_EQ(locate("/Users/mira/Library/Messages/Attachments/aa/a.jpg"), file);
    EXPECT_EQ(locate("Attachments/./x/../aa/a.jpg"), file);
}

TEST_F(RecoveryOverlay, prefersAFileThatIsReallyInTheLibrary) {
    recovered("a.jpg");
    primary_->file = folder_.write("library/a.jpg", "library");
    EXPECT_EQ(locate("a.jpg"), primary_->file);
    EXPECT_THAT(primary_->releases, IsEmpty());
}

TEST_F(RecoveryOverlay, givesTheRecoveredFileWherePrimarysHasNoBytesHere) {
    const fs::path file = recovered("a.jpg");
    primary_->file = folder_.write("library/a.jpg", "");
    EXPECT_EQ(locate("a.jpg"), file);
    fs::resize_file(*primary_->file, 100'000); // a length without blocks
    EXPECT_EQ(locate("a.jpg"), file);
    fs::remove(*primary_->file);
    EXPECT_EQ(locate("a.jpg"), file);
}

TEST_F(RecoveryOverlay, givesAFileOfPrimaryBackThatItDoesNotPassOn) {
    primary_->file = folder_.write("library/a.jpg", "");
    EXPECT_EQ(locate("a.jpg"), std::nullopt);
    EXPECT_THAT(primary_->releases, ElementsAre(*primary_->file));
}

TEST_F(RecoveryOverlay, passesOnTheReleaseOfPrimarysFilesOnly) {
    locator_.release(folder_ / "library/a.jpg");
    locator_.release(recovered("a.jpg"));
    EXPECT_THAT(primary_->releases, ElementsAre(folder_ / "library/a.jpg"));
    EXPECT_TRUE(fs::exists(root() / "a.jpg"));
}

TEST_F(RecoveryOverlay, givesNothingWhereNothingWasRecovered) {
    fs::remove(root());
    EXPECT_EQ(locate("~/Library/Messages/Attachments/aa/a.jpg"), std::nullopt);
}

struct StoredPathCase {
    const char* name;
    std::string storedPath;
};

class PathWithoutFile : public RecoveryOverlay, public testing::WithParamInterface<StoredPathCase> {};

TEST_P(PathWithoutFile, givesNothing) {
    folder_.write("outside/a.jpg", "outside");
    recovered("folder/inside.jpg");
    recovered("recovery-manifest.json");
    folder_.write("root/empty.jpg", "");
    fs::resize_file(folder_.write("root/evicted.jpg", ""), 100'000);
    fs::create_directory_symlink("../outside", root() / "out");
    fs::create_symlink("../outside/a.jpg", root() / "file.jpg");
    fs::create_symlink("loop", root() / "loop");
    ASSERT_EQ(::mkfifo((root() / "pipe").c_str(), 0666), 0);
    EXPECT_EQ(locate(GetParam().storedPath), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(
    Table, PathWithoutFile,
    testing::Values(StoredPathCase{"empty", ""}, StoredPathCase{"climbing", "../outside/a.jpg"},
                    StoredPathCase{"throughALinkOut", "~/Library/Messages/out/a.jpg"},
                    StoredPathCase{"linkToAFileOutside", "file.jpg"}, StoredPathCase{"loop", "loop"},
                    StoredPathCase{"folder", "folder"}, StoredPathCase{"pipe", "pipe"},
                    StoredPathCase{"emptyFile", "empty.jpg"}, StoredPathCase{"evictedFile", "evicted.jpg"},
                    StoredPathCase{"manifest", "~/Library/Messages/recovery-manifest.json"},
                    StoredPathCase{"zeroByte", std::string("folder/inside.jpg\0", 18)},
                    StoredPathCase{"longName", std::string(256, 'a')},
                    StoredPathCase{"longPath", std::string(5'000, 'a')}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(RecoveryOverlay, servesWhatASearchAndARecoveryBroughtBack) {
    const std::string stored = "~/Library/Messages/Attachments/aa/00/GUID/IMG_0001.heic";
    const fs::path cached = folder_.write("cache/Assets/IMG_0001.HEIC", "12345");
    fs::create_directories(folder_ / "library");
    RecoveryOverlayAttachmentLocator locator(
        std::make_shared<LocalLibraryAttachmentLocator>(folder_ / "library"), root());
    EXPECT_EQ(locator.locate(stored), std::nullopt);

    CloudKitCacheRecoveryService service({folder_ / "cache"});
    const auto report = service.findRecoverable({test::missing(stored, 5, "IMG_0001.HEIC")});
    EXPECT_EQ(service.recover(report.candidates, root()).recoveredCount, 1);
    EXPECT_EQ(locator.locate(stored), root() / "Attachments/aa/00/GUID/IMG_0001.heic");

    const fs::path again = folder_.write("library/Attachments/aa/00/GUID/IMG_0001.heic", "library");
    EXPECT_EQ(locator.locate(stored), again);
}

} // namespace
} // namespace quillbook
