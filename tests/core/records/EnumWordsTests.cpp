#include "core/records/EnumWords.h"

#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillbook {
namespace {

template <typename Enumeration>
std::vector<std::string> wordsOf(std::initializer_list<Enumeration> cases) {
    std::vector<std::string> words;
    for (const Enumeration each : cases)
        words.emplace_back(rawValue(each));
    return words;
}

TEST(EnumWords, ofStagesAreTheirNames) {
    using enum ExportStage;
    EXPECT_THAT(wordsOf({preparing, readingMessages, copyingAttachments, writingArchive, finalizing}),
                testing::ElementsAre("preparing", "readingMessages", "copyingAttachments", "writingArchive",
                                     "finalizing"));
}

TEST(EnumWords, ofReactionsAreTheirNames) {
    using enum ReactionKind;
    EXPECT_THAT(wordsOf({loved, liked, disliked, laughed, emphasized, questioned, custom, unknown}),
                testing::ElementsAre("loved", "liked", "disliked", "laughed", "emphasized", "questioned",
                                     "custom", "unknown"));
}

TEST(EnumWords, ofPayloadStatesAreTheirNames) {
    using enum MessagePayloadState;
    EXPECT_THAT(wordsOf({decoded, partiallyDecoded, unsupported}),
                testing::ElementsAre("decoded", "partiallyDecoded", "unsupported"));
}

TEST(EnumWords, ofAvailabilitiesAreTheirNames) {
    using enum AttachmentAvailability;
    EXPECT_THAT(wordsOf({available, missing, unreadable}),
                testing::ElementsAre("available", "missing", "unreadable"));
}

template <typename Enumeration>
void expectToComeBack(int count) {
    for (int index = 0; index < count; ++index) {
        const auto word = static_cast<Enumeration>(index);
        EXPECT_EQ(fromRawValue<Enumeration>(rawValue(word)), word) << rawValue(word);
    }
}

TEST(EnumWords, allComeBack) {
    expectToComeBack<ExportStage>(5);
    expectToComeBack<ReactionKind>(8);
    expectToComeBack<MessagePayloadState>(3);
    expectToComeBack<AttachmentAvailability>(3);
}

TEST(EnumWords, otherTextsAreNone) {
    for (const std::string text :
         {"", "Missing", "MISSING", "missing ", " missing", "mis", "missin", "0", "1"}) {
        EXPECT_EQ(fromRawValue<AttachmentAvailability>(text), std::nullopt) << text;
        EXPECT_EQ(fromRawValue<ReactionKind>(text), std::nullopt) << text;
        EXPECT_EQ(fromRawValue<MessagePayloadState>(text), std::nullopt) << text;
        EXPECT_EQ(fromRawValue<ExportStage>(text), std::nullopt) << text;
    }
}

TEST(EnumWords, ofOneEnumerationAreNoneOfAnother) {
    EXPECT_EQ(fromRawValue<ReactionKind>("missing"), std::nullopt);
    EXPECT_EQ(fromRawValue<AttachmentAvailability>("loved"), std::nullopt);
}

} // namespace
} // namespace quillbook
