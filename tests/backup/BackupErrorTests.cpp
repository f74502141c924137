#include "backup/BackupError.h"

#include <gmock/gmock.h>

namespace quillbook {
namespace {

using Reason = BackupError::Reason;

struct WordsCase {
    const char* name;
    BackupError error;
    const char* words;
};

class BackupErrorWords : public testing::TestWithParam<WordsCase> {};

TEST_P(BackupErrorWords, AreThoseOfTheReason) {
    EXPECT_EQ(GetParam().error.description(), GetParam().words);
}

INSTANTIATE_TEST_SUITE_P(
    Table, BackupErrorWords,
    testing::Values(
        WordsCase{"unsupportedBackup", BackupError(Reason::unsupportedBackup, "protection class 7"),
                  "This backup is not supported: protection class 7"},
        WordsCase{"wrongPassword", BackupError(Reason::wrongPassword), "The backup password is incorrect."},
        WordsCase{"manifestUnreadable", BackupError(Reason::manifestUnreadable),
                  "The backup manifest could not be read."},
        WordsCase{"messageDatabaseMissing", BackupError(Reason::messageDatabaseMissing),
                  "This backup does not contain a Messages database. It may be incomplete, or made before "
                  "the device had any messages. Backing the device up again in Finder usually produces one "
                  "that does."},
        WordsCase{"malformedKeybag", BackupError(Reason::malformedKeybag),
                  "The backup’s encryption keybag is malformed."},
        WordsCase{"deviceNotBackedUp", BackupError(Reason::deviceNotBackedUp),
                  "Quillbook reads a backup of your iPhone or iPad, not the device itself. Open Finder, "
                  "select your device, and choose Back Up Now. The backup then appears here as a source."}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(BackupError, IsComparedByReasonAndDetail) {
    EXPECT_EQ(BackupError(Reason::wrongPassword), BackupError(Reason::wrongPassword));
    EXPECT_NE(BackupError(Reason::wrongPassword), BackupError(Reason::malformedKeybag));
    EXPECT_NE(BackupError(Reason::unsupportedBackup, "a"), BackupError(Reason::unsupportedBackup, "b"));
}

} // namespace
} // namespace quillbook
