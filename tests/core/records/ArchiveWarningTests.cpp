#include "core/records/ArchiveConversation.h"
#include "core/records/ArchiveWarning.h"

#include <gtest/gtest.h>

namespace quillbook {
namespace {

std::string shownFor(const std::string& code) {
    return ArchiveWarning{"id", code, "Stored text.", {}}.localizedSummary();
}

TEST(LocalizedSummary, ofKnownCodesIsFixed) {
    EXPECT_EQ(shownFor("unresolved_reaction"), "A reaction could not be matched to its message.");
    EXPECT_EQ(shownFor("unsupported_payload"), "A message payload could not be fully decoded.");
    EXPECT_EQ(shownFor("attachment_missing"), "An attachment was missing and could not be included.");
    EXPECT_EQ(shownFor("attachment_unreadable"), "An attachment could not be read and was skipped.");
}

TEST(LocalizedSummary, ofOtherCodesIsTheStoredOne) {
    for (const char* code : {"", "unknown", "Attachment_Missing", "attachment_missing "}) {
        EXPECT_EQ(shownFor(code), "Stored text.") << code;
    }
}

ArchiveAttachment attachment(AttachmentAvailability availability) {
    ArchiveAttachment result;
    result.id = SourceID{"attachment-7"};
    result.displayName = "Ada's letter.pdf";
    result.availability = availability;
    return result;
}

TEST(AttachmentWarning, ofAMissingOneNamesIt) {
    const ArchiveWarning expected{"attachment-missing-attachment-7", "attachment_missing",
                                  "Attachment Ada's letter.pdf was missing.", SourceID{"attachment-7"}};
    EXPECT_EQ(attachmentWarning(attachment(AttachmentAvailability::missing)), expected);
}

TEST(AttachmentWarning, ofAnUnreadableOneNamesIt) {
    const ArchiveWarning expected{"attachment-unreadable-attachment-7", "attachment_unreadable",
                                  "Attachment Ada's letter.pdf was unreadable.", SourceID{"attachment-7"}};
    EXPECT_EQ(attachmentWarning(attachment(AttachmentAvailability::unreadable)), expected);
}

TEST(AttachmentWarning, isShownWithoutTheName) {
    EXPECT_EQ(attachmentWarning(attachment(AttachmentAvailability::missing)).localizedSummary(),
              "An attachment was missing and could not be included.");
}

} // namespace
} // namespace quillbook
