#include "core/records/Cancellation.h"
#include "store/RepositoryError.h"
#include "tests/store/RepositoryFakes.h"

namespace quillbook {
namespace {

class AttachmentSurvey : public test::RepositoryTest {
protected:
    std::int64_t addMessage() { return database.addMessage(1, {.guid = std::nullopt, .text = "x"}); }
    AttachmentStorageSurvey survey() { return repository().surveyAttachmentStorage(SourceID{"1"}, {}); }
    std::vector<MissingAttachmentRecord> missing(const std::string& id = "1") {
        return repository().missingAttachments(SourceID{id}, {});
    }
    void SetUp() override {
        addDirectChat();
        files->files["here"] = folder.write("here.jpg", "bytes");
        files->files["empty"] = folder.write("empty.jpg", "");
        files->files["gone"] = folder / "gone.jpg";
    }
};

TEST_F(AttachmentSurvey, countsWhatIsHereAndWhatIsNot) {
    const auto message = addMessage();
    for (const char* filename : {"here", "empty", "gone", "unknown"})
        database.addAttachment(message, {.filename = filename});
    database.addAttachment(message, {});
    EXPECT_EQ(survey(), (AttachmentStorageSurvey{.local = 1, .missing = 4}));
}

TEST_F(AttachmentSurvey, attachmentOfTwoMessagesCountsTwiceHereAndOnceAmongTheMissing) {
    const auto first = addMessage();
    const auto second = addMessage();
    const auto attachment = database.addAttachment(first, {.filename = "gone"});
    database.run("INSERT INTO message_attachment_join VALUES (" + std::to_string(second) + ", " +
                 std::to_string(attachment) + ")");
    EXPECT_EQ(survey(), (AttachmentStorageSurvey{.local = 0, .missing = 2}));
    EXPECT_EQ(missing().size(), 1U);
}

TEST_F(AttachmentSurvey, missingRecordsKeepTheirFields) {
    database.addAttachment(addMessage(), {"guid", "gone", "gone.jpg", 42, "image/jpeg", std::nullopt});
    EXPECT_EQ(missing(),
              (std::vector<MissingAttachmentRecord>{{1, "guid", "gone", "gone.jpg", 42, "image/jpeg"}}));
}

TEST_F(AttachmentSurvey, recordsWithoutAPathAndThoseThatAreHereAreNotListed) {
    const auto message = addMessage();
    database.addAttachment(message, {.guid = "a", .filename = "here"});
    database.addAttachment(message, {.guid = "b"});
    database.addAttachment(message, {.guid = "c", .filename = ""});
    database.addAttachment(message, {.guid = "d", .filename = "empty"});
    ASSERT_EQ(missing().size(), 1U);
    EXPECT_EQ(missing()[0].guid, "d");
}

TEST_F(AttachmentSurvey, missingRefusesIDsBelowOne) {
    for (const char* id : {"0", "-1", "x", ""})
        EXPECT_THROW(missing(id), RepositoryError) << id;
}

TEST_F(AttachmentSurvey, stopsWhenCancelled) {
    database.addAttachment(addMessage(), {.filename = "gone"});
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(repository().missingAttachments(SourceID{"1"}, stop.get_token()), CancellationError);
    EXPECT_THROW(repository().surveyAttachmentStorage(SourceID{"1"}, stop.get_token()), CancellationError);
}

} // namespace
} // namespace quillbook
