#include "export/TranscriptBuffer.h"
#include "platform/FileError.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace quillbook {
namespace {

TEST(TranscriptBuffer, gathersTextBelow64KiB) {
    const test::TemporaryFolder folder;
    TranscriptBuffer buffer(folder / "text");
    buffer.text().append(65'535, 'a');
    buffer.endBlock();
    EXPECT_EQ(std::filesystem::file_size(folder / "text"), 0U);
}

TEST(TranscriptBuffer, writesAt64KiB) {
    const test::TemporaryFolder folder;
    TranscriptBuffer buffer(folder / "text");
    buffer.text().append(65'536, 'a');
    buffer.endBlock();
    EXPECT_EQ(std::filesystem::file_size(folder / "text"), 65'536U);
    EXPECT_TRUE(buffer.text().empty());
}

TEST(TranscriptBuffer, writesWhatIsLeftAtItsEnd) {
    const test::TemporaryFolder folder;
    TranscriptBuffer buffer(folder / "text");
    buffer.text() += "left";
    buffer.finish();
    EXPECT_EQ(test::readFile(folder / "text"), "left");
}

TEST(TranscriptBuffer, writesAheadOfTheGatheredText) {
    const test::TemporaryFolder folder;
    TranscriptBuffer buffer(folder / "text");
    buffer.text() += "behind";
    buffer.writeAhead("before ");
    buffer.finish();
    EXPECT_EQ(test::readFile(folder / "text"), "before behind");
}

TEST(TranscriptBuffer, keepsItsTextWhenAWriteFails) {
    TranscriptBuffer buffer("/dev/full");
    buffer.text() += "kept";
    EXPECT_THROW(buffer.finish(), FileError);
    EXPECT_EQ(buffer.text(), "kept");
}

} // namespace
} // namespace quillbook
