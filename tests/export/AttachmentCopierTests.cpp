#include "core/records/Cancellation.h"
#include "export/AttachmentCopier.h"
#include "export/FileHash.h"
#include "platform/FileError.h"
#include "platform/FileReader.h"
#include "tests/export/ExportFixture.h"
#include "tests/export/FakeLoader.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/TemporaryFolder.h"

#include <cerrno>
#include <chrono>
#include <thread>

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace quillbook {
namespace {

namespace fs = std::filesystem;
using test::attachment;
using test::entriesOf;
using testing::ElementsAre;
using testing::IsEmpty;
using Reason = ExportFileError::Reason;

constexpr const char* digestOfABC = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";

/// A copier with a folder to copy into and a clone function that notes its calls and copies.
class AttachmentCopierTest : public testing::Test {
protected:
    ArchiveAttachment copy(const ArchiveAttachment& record, const fs::path& source,
                           std::stop_token stop = {}) {
        return copier_.copyAttachment(record, source, attachments_, &index_, stop);
    }

    /// The reason that ended the copying, or nothing.
    std::optional<Reason> failureOf(const ArchiveAttachment& record, const fs::path& source) {
        try {
            copy(record, source);
        } catch (const ExportFileError& error) {
            return error.reason;
        }
        return std::nullopt;
    }

    void addEntry(std::int64_t size, const std::string& digest, const fs::path& file) {
        index_.entriesBySize[size].push_back({.sha256 = digest, .url = file});
    }

    test::TemporaryFolder folder_;
    fs::path attachments_ = folder_ / "album/attachments";
    ArchiveReuseIndex index_;
    std::vector<std::string> cloned_;
    bool canClone_ = true;
    AttachmentCopier copier_{[this](const fs::path& source, const fs::path& destination) {
        cloned_.push_back(source.filename().string() + " to " + destination.filename().string());
        return canClone_ && !fs::exists(destination) && fs::copy_file(source, destination);
    }};
};

TEST_F(AttachmentCopierTest, copiesTheBytesUnderTheName) {
    copy(attachment("a1", "Zoë.jpg", "s"), folder_.write("source", "abc"));
    EXPECT_EQ(test::readFile(attachments_ / "Zoë.jpg"), "abc");
}

TEST_F(AttachmentCopierTest, settlesThreeFieldsAndNoOther) {
    auto record = attachment("a1", "a.jpg", "s");
    record.guid = "g";
    record.uniformType = "public.jpeg";
    record.byteSize = 999;
    record.availability = AttachmentAvailability::missing;
    auto expected = record;
    expected.archivePath = "attachments/a.jpg";
    expected.sha256 = digestOfABC;
    expected.availability = AttachmentAvailability::available;
    EXPECT_EQ(copy(record, folder_.write("source", "abc")), expected);
}

TEST_F(AttachmentCopierTest, copiesAFileOfManyBlocks) {
    std::string contents(2 * fileBlockSize + 77, 'x');
    for (std::size_t index = 0; index < contents.size(); index += 13)
        contents[index] = static_cast<char>(index);
    const auto source = folder_.write("source", contents);
    const auto record = copy(attachment("a1", "a.mov", "s"), source);
    EXPECT_EQ(test::readFile(attachments_ / "a.mov"), contents);
    EXPECT_EQ(record.sha256, hashFile(source, {}));
}

TEST_F(AttachmentCopierTest, copiesWhatALinkLeadsTo) {
    folder_.write("real", "abc");
    fs::create_symlink("real", folder_ / "link");
    copy(attachment("a1", "a.jpg", "s"), folder_ / "link");
    EXPECT_FALSE(fs::is_symlink(attachments_ / "a.jpg"));
    EXPECT_EQ(test::readFile(attachments_ / "a.jpg"), "abc");
}

TEST_F(AttachmentCopierTest, countsAnAbsentSourceAsMissing) {
    auto record = attachment("a1", "a.jpg", "s");
    record.archivePath = "attachments/old.jpg";
    record.sha256 = "old";
    const auto settled = copy(record, folder_ / "absent");
    EXPECT_EQ(settled, withoutFile(record, AttachmentAvailability::missing));
    EXPECT_FALSE(settled.archivePath || settled.sha256);
}

TEST_F(AttachmentCopierTest, countsAnEmptySourceAsMissing) {
    const auto settled = copy(attachment("a1", "a.jpg", "s"), folder_.write("source", ""));
    EXPECT_EQ(settled.availability, AttachmentAvailability::missing);
}

TEST_F(AttachmentCopierTest, countsASourceWithoutBlocksAsMissing) {
    const auto source = folder_.write("source", "");
    fs::resize_file(source, 5'000'000);
    EXPECT_EQ(copy(attachment("a1", "a.jpg", "s"), source).availability, AttachmentAvailability::missing);
}

TEST_F(AttachmentCopierTest, makesNoFolderForMissingAttachments) {
    copy(attachment("a1", "a.jpg", "s"), folder_ / "absent");
    EXPECT_FALSE(fs::exists(folder_ / "album"));
}

TEST_F(AttachmentCopierTest, takesNoNameForMissingAttachments) {
    copy(attachment("a1", "a.jpg", "s"), folder_ / "absent");
    const auto record = copy(attachment("a2", "a.jpg", "s"), folder_.write("source", "abc"));
    EXPECT_EQ(record.archivePath, "attachments/a.jpg");
}

TEST_F(AttachmentCopierTest, countsAFolderAsUnreadable) {
    const auto record = attachment("a1", "a.jpg", "s");
    fs::create_directory(folder_ / "source");
    EXPECT_EQ(copy(record, folder_ / "source"), withoutFile(record, AttachmentAvailability::unreadable));
    EXPECT_THAT(entriesOf(attachments_), IsEmpty());
}

TEST_F(AttachmentCopierTest, passesOnThatTheFolderCannotBeMade) {
    folder_.write("album", "a file in the way");
    EXPECT_THROW(copy(attachment("a1", "a.jpg", "s"), folder_.write("source", "abc")), FileError);
}

TEST_F(AttachmentCopierTest, givesEqualNamesNumbers) {
    const auto source = folder_.write("source", "abc");
    for (const char* name : {"IMG.JPG", "img.jpg", "Img.jpg"})
        copy(attachment("a", name, "s"), source);
    EXPECT_THAT(entriesOf(attachments_), ElementsAre("IMG.JPG", "Img-3.jpg", "img-2.jpg"));
}

TEST_F(AttachmentCopierTest, keepsANameTakenWhenTheCopyFails) {
    fs::create_directory(folder_ / "source");
    copy(attachment("a1", "a.jpg", "s"), folder_ / "source");
    EXPECT_EQ(copy(attachment("a2", "a.jpg", "s"), folder_.write("file", "abc")).archivePath,
              "attachments/a-2.jpg");
}

TEST_F(AttachmentCopierTest, fallsBackToTheID) {
    const auto record = copy(attachment("at_12", " . ", "s"), folder_.write("source", "abc"));
    EXPECT_EQ(record.archivePath, "attachments/Attachment-at_12");
}

class UnsafeID : public AttachmentCopierTest, public testing::WithParamInterface<std::string> {};

TEST_P(UnsafeID, endsAtThePathGuard) {
    EXPECT_EQ(failureOf(attachment(GetParam(), "...", "s"), folder_.write("source", "abc")),
              Reason::pathEscapesDestination);
    EXPECT_THAT(entriesOf(attachments_), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Table, UnsafeID,
                         testing::Values("a/b", "/", "/..", "a/../b", "a/../../b", "../../../etc/passwd",
                                         "a/b.jpg", "a.b/c.jpg", "a/", std::string("a\0b", 3)));

TEST_F(AttachmentCopierTest, namesTheFileInItsErrors) {
    EXPECT_EQ(ExportFileError(Reason::pathEscapesDestination, "a/b").description(),
              "The generated attachment path was unsafe: a/b");
    EXPECT_EQ(ExportFileError(Reason::destinationWriteFailed, "a.jpg").description(),
              "Could not write a.jpg to the destination. The disk may be full or read-only.");
}

TEST_F(AttachmentCopierTest, endsTheExportWhereTheFileCannotBeMade) {
    fs::create_directories(attachments_ / "a.jpg");
    EXPECT_EQ(failureOf(attachment("a1", "a.jpg", "s"), folder_.write("source", "abc")),
              Reason::destinationWriteFailed);
}

TEST_F(AttachmentCopierTest, endsTheExportWhenAWriteFails) {
    const auto source = folder_.write("source", std::string(3 * fileBlockSize, 'x'));
    const test::FileSizeLimit limit(2 * fileBlockSize);
    EXPECT_EQ(failureOf(attachment("a1", "a.jpg", "s"), source), Reason::destinationWriteFailed);
}

TEST_F(AttachmentCopierTest, leavesNoPartOfAFileWhenAWriteFails) {
    const auto source = folder_.write("source", std::string(3 * fileBlockSize, 'x'));
    const test::FileSizeLimit limit(2 * fileBlockSize);
    failureOf(attachment("a1", "a.jpg", "s"), source);
    EXPECT_THAT(entriesOf(attachments_), IsEmpty());
}

TEST_F(AttachmentCopierTest, endsTheExportWhenTheLastBlockFailsOnlyAtTheClose) {
    const auto source = folder_.write("source", "abc");
    EXPECT_EQ(test::runInChild([&]() -> std::string {
                  // The source takes the lowest free descriptor, the copy the next one. The empty file that
                  // is made before takes the lowest one, too.
                  const int lowest = ::dup(0);
                  const int next = ::dup(0);
                  ::close(lowest);
                  ::close(next);
                  if (!test::failSystemCall(SYS_close, 0, static_cast<std::uint32_t>(next), ENOSPC))
                      return "no filter";
                  if (failureOf(attachment("a1", "a.jpg", "s"), source) != Reason::destinationWriteFailed)
                      return "no failure";
                  return entriesOf(attachments_).empty() ? "" : "a file was left";
              }),
              "");
}

TEST_F(AttachmentCopierTest, countsASourceThatMayNotBeOpenedAsUnreadable) {
    const auto source = folder_.write("source", "abc");
    fs::create_directories(attachments_);
    for (const auto& path : {folder_.path(), folder_ / "album", attachments_})
        fs::permissions(path, fs::perms(0777));
    fs::permissions(source, fs::perms::none);
    EXPECT_EQ(test::runInChild([&]() -> std::string {
                  if (!test::becomeOrdinaryUser()) return "could not change the user";
                  const auto record = attachment("a1", "a.jpg", "s");
                  if (copy(record, source) != withoutFile(record, AttachmentAvailability::unreadable))
                      return "other record";
                  return entriesOf(attachments_).empty() ? "" : "a file was left";
              }),
              "");
}

TEST_F(AttachmentCopierTest, countsASourceWhoseReadingFailsAsUnreadable) {
    const auto source = folder_.write("source", "abc");
    EXPECT_EQ(test::runInChild([&]() -> std::string {
                  if (!test::failSystemCall(SYS_read, 2, leastFileBlockSize, EIO)) return "no filter";
                  const auto record = attachment("a1", "a.jpg", "s");
                  if (copy(record, source) != withoutFile(record, AttachmentAvailability::unreadable))
                      return "other record";
                  return entriesOf(attachments_).empty() ? "" : "a file was left";
              }),
              "");
}

TEST_F(AttachmentCopierTest, countsADestinationThatCannotBeOpenedOnTheSourcesSide) {
    const auto source = folder_.write("source", "abc");
    EXPECT_EQ(test::runInChild([&]() -> std::string {
                  const int lowest = ::dup(0);
                  ::close(lowest);
                  // Room for one more file: enough to make the copy's, and then to open the source, but not
                  // for both.
                  const rlimit limit{static_cast<rlim_t>(lowest) + 1, static_cast<rlim_t>(lowest) + 1};
                  if (::setrlimit(RLIMIT_NOFILE, &limit) != 0) return "no limit";
                  const auto record = attachment("a1", "a.jpg", "s");
                  if (copy(record, source) != withoutFile(record, AttachmentAvailability::unreadable))
                      return "other record";
                  return fs::exists(attachments_ / "a.jpg") ? "a file was left" : "";
              }),
              "");
}

TEST_F(AttachmentCopierTest, throwsCancellationOnceStopped) {
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(copy(attachment("a1", "a.jpg", "s"), folder_.write("source", "abc"), stop.get_token()),
                 CancellationError);
    EXPECT_THAT(entriesOf(attachments_), IsEmpty());
}

TEST_F(AttachmentCopierTest, leavesNoPartOfAFileWhenCancelledInTheMiddle) {
    const auto source = folder_.write("source", "x");
    fs::resize_file(source, std::uintmax_t{4} << 30U); // a hole, which takes no room
    std::stop_source stop;
    std::jthread canceller([&] {
        while (!fs::exists(attachments_ / "a.mov") || fs::file_size(attachments_ / "a.mov") == 0) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        stop.request_stop();
    });
    EXPECT_THROW(copy(attachment("a1", "a.mov", "s"), source, stop.get_token()), CancellationError);
    EXPECT_THAT(entriesOf(attachments_), IsEmpty());
}

using AttachmentReuse = AttachmentCopierTest;

TEST_F(AttachmentReuse, clonesAFileOfEqualSizeAndDigest) {
    addEntry(3, digestOfABC, folder_.write("earlier/old.jpg", "abc"));
    const auto record = copy(attachment("a1", "new.jpg", "s"), folder_.write("source", "abc"));
    EXPECT_THAT(cloned_, ElementsAre("old.jpg to new.jpg"));
    EXPECT_EQ(record.archivePath, "attachments/new.jpg");
    EXPECT_EQ(record.sha256, digestOfABC);
    EXPECT_EQ(record.availability, AttachmentAvailability::available);
    EXPECT_EQ(copier_.reusedCount(), 1);
}

TEST_F(AttachmentReuse, copiesWhereNoCloneCanBeMade) {
    canClone_ = false;
    addEntry(3, digestOfABC, folder_.write("earlier/old.jpg", "abc"));
    EXPECT_EQ(copy(attachment("a1", "new.jpg", "s"), folder_.write("source", "abc")).sha256, digestOfABC);
    EXPECT_EQ(test::readFile(attachments_ / "new.jpg"), "abc");
    EXPECT_EQ(copier_.reusedCount(), 0);
}

TEST_F(AttachmentReuse, copiesAFileOfEqualSizeAndOtherDigest) {
    addEntry(3, digestOfABC, folder_.write("earlier/old.jpg", "abc"));
    copy(attachment("a1", "new.jpg", "s"), folder_.write("source", "xyz"));
    EXPECT_THAT(cloned_, IsEmpty());
    EXPECT_EQ(test::readFile(attachments_ / "new.jpg"), "xyz");
}

TEST_F(AttachmentReuse, clonesNoFileThatWasCutOrEvictedSince) {
    const auto old = folder_.write("earlier/old.jpg", "abcd");
    addEntry(3, digestOfABC, old);
    copy(attachment("a1", "longer.jpg", "s"), folder_.write("source", "abc"));
    fs::resize_file(old, 0);
    copy(attachment("a2", "empty.jpg", "s"), folder_ / "source");
    fs::resize_file(old, 3); // a hole: its length without its bytes
    copy(attachment("a3", "hole.jpg", "s"), folder_ / "source");
    EXPECT_THAT(cloned_, IsEmpty());
    EXPECT_EQ(test::readFile(attachments_ / "hole.jpg"), "abc");
}

TEST_F(AttachmentReuse, comparesDigestsExactly) {
    std::string capitals = digestOfABC;
    for (char& digit : capitals)
        digit = digit >= 'a' ? static_cast<char>(digit - 'a' + 'A') : digit;
    addEntry(3, capitals, folder_.write("earlier/old.jpg", "abc"));
    copy(attachment("a1", "new.jpg", "s"), folder_.write("source", "abc"));
    EXPECT_THAT(cloned_, IsEmpty());
}

TEST_F(AttachmentReuse, goesByTheRealSizeNotTheRecords) {
    addEntry(99, digestOfABC, folder_.write("earlier/old.jpg", "abc"));
    auto record = attachment("a1", "new.jpg", "s");
    record.byteSize = 99;
    copy(record, folder_.write("source", "abc"));
    EXPECT_THAT(cloned_, IsEmpty());
}

TEST_F(AttachmentReuse, takesTheFirstOfEqualDigests) {
    addEntry(3, "other", folder_.write("earlier/0", "abc"));
    addEntry(3, digestOfABC, folder_.write("earlier/1", "abc"));
    addEntry(3, digestOfABC, folder_.write("earlier/2", "abc"));
    copy(attachment("a1", "new.jpg", "s"), folder_.write("source", "abc"));
    EXPECT_THAT(cloned_, ElementsAre("1 to new.jpg"));
}

TEST_F(AttachmentReuse, triesNoFurtherEntryWhereTheFirstHasGone) {
    addEntry(3, digestOfABC, folder_ / "earlier/gone");
    addEntry(3, digestOfABC, folder_.write("earlier/2", "abc"));
    copy(attachment("a1", "new.jpg", "s"), folder_.write("source", "abc"));
    EXPECT_THAT(cloned_, IsEmpty());
    EXPECT_EQ(test::readFile(attachments_ / "new.jpg"), "abc");
}

TEST_F(AttachmentReuse, clonesNoLink) {
    folder_.write("secret", "abc");
    fs::create_symlink("secret", folder_ / "link");
    addEntry(3, digestOfABC, folder_ / "link");
    copy(attachment("a1", "new.jpg", "s"), folder_.write("source", "abc"));
    EXPECT_THAT(cloned_, IsEmpty());
}

TEST_F(AttachmentReuse, clonesNoFolder) {
    fs::create_directory(folder_ / "earlier");
    addEntry(3, digestOfABC, folder_ / "earlier");
    copy(attachment("a1", "new.jpg", "s"), folder_.write("source", "abc"));
    EXPECT_THAT(cloned_, IsEmpty());
}

TEST_F(AttachmentReuse, clonesOverWhatStandsAtTheDestination) {
    folder_.write("album/attachments/new.jpg", "leftover");
    addEntry(3, digestOfABC, folder_.write("earlier/old.jpg", "abc"));
    copy(attachment("a1", "new.jpg", "s"), folder_.write("source", "abc"));
    EXPECT_EQ(test::readFile(attachments_ / "new.jpg"), "abc");
    EXPECT_EQ(copier_.reusedCount(), 1);
}

TEST_F(AttachmentReuse, throwsCancellationOnceStopped) {
    addEntry(3, digestOfABC, folder_.write("earlier/old.jpg", "abc"));
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(copy(attachment("a1", "a.jpg", "s"), folder_.write("source", "abc"), stop.get_token()),
                 CancellationError);
    EXPECT_EQ(copier_.reusedCount(), 0);
}

TEST_F(AttachmentReuse, stopsInTheMiddleOfTheDigest) {
    const auto source = folder_.write("source", "x");
    fs::resize_file(source, std::uintmax_t{1} << 40U); // a hole, which takes no room
    addEntry(std::int64_t{1} << 40U, digestOfABC, folder_.write("earlier/old.jpg", "abc"));
    std::stop_source stop;
    std::jthread canceller([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        stop.request_stop();
    });
    EXPECT_THROW(copy(attachment("a1", "a.mov", "s"), source, stop.get_token()), CancellationError);
    EXPECT_THAT(entriesOf(attachments_), IsEmpty());
}

TEST_F(AttachmentReuse, leavesASourceThatCannotBeReadToThePlainCopy) {
    addEntry(3, digestOfABC, folder_.write("earlier/old.jpg", "abc"));
    const auto source = folder_.write("source", "abc");
    EXPECT_EQ(test::runInChild([&]() -> std::string {
                  if (!test::failSystemCall(SYS_read, 2, leastFileBlockSize, EIO)) return "no filter";
                  const auto record = copy(attachment("a1", "a.jpg", "s"), source);
                  return record.availability == AttachmentAvailability::unreadable ? "" : "other record";
              }),
              "");
}

/// Makes a file system with clones at `folder`; false where the system does not allow that.
bool mountDiskWithClones(const fs::path& image, const fs::path& folder) {
    const std::string quotedImage = "'" + image.string() + "'";
    const std::string make =
        "mkfs.xfs -q -m reflink=1 -d file,name=" + quotedImage + ",size=320m >/dev/null 2>&1";
    const std::string mount = "mount -o loop " + quotedImage + " '" + folder.string() + "' 2>/dev/null";
    return std::system(make.c_str()) == 0 && std::system(mount.c_str()) == 0;
}

TEST(AttachmentReuseOnDisk, clonesWithinOneVolumeAndCopiesAcrossVolumes) {
    const test::TemporaryFolder folder;
    fs::create_directory(folder / "disk");
    const auto source = folder.write("source", std::string(100'000, 'q'));
    const std::string outcome = test::runInChild([&]() -> std::string {
        if (!test::enterPrivateMounts() || !mountDiskWithClones(folder / "image", folder / "disk"))
            return "not mounted";
        fs::create_directory(folder / "disk/earlier");
        fs::copy_file(source, folder / "disk/earlier/a.jpg");
        ArchiveReuseIndex index;
        index.entriesBySize[100'000].push_back(
            {.sha256 = hashFile(source, {}), .url = folder / "disk/earlier/a.jpg"});
        AttachmentCopier copier;
        const auto record = attachment("a1", "new.jpg", "s");
        copier.copyAttachment(record, source, folder / "elsewhere/attachments", &index, {});
        if (copier.reusedCount() != 0) return "cloned across volumes";
        if (test::readFile(folder / "elsewhere/attachments/new.jpg") != test::readFile(source))
            return "other copy";
        const auto settled = copier.copyAttachment(record, source, folder / "disk/attachments", &index, {});
        if (copier.reusedCount() != 1) return "not cloned";
        const fs::path clone = folder / "disk" / *settled.archivePath;
        if (fs::hard_link_count(clone) != 1) return "a hard link";
        fs::remove(folder / "disk/earlier/a.jpg");
        return test::readFile(clone) == test::readFile(source) ? "" : "other clone";
    });
    if (outcome == "not mounted") {
        std::cout << "No file system with clones can be mounted here; the clone function is tested apart."
                  << '\n';
        return;
    }
    EXPECT_EQ(outcome, "");
}

} // namespace
} // namespace quillbook
