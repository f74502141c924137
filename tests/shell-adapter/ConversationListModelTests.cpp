#include "core/text/DateText.h"
#include "core/text/ISO8601.h"
#include "core/text/Localization.h"
#include "shell/adapter/ConversationListModel.h"
#include "shell/adapter/Words.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

using Model = ConversationListModel;
using Role = Model::Role;

ConversationSummary summary(int number) {
    ConversationSummary row;
    row.id = {std::to_string(number)};
    row.title = "Ada Quill";
    return row;
}

class ConversationListModelTest : public testing::Test {
protected:
    ~ConversationListModelTest() override { useTranslation({}); }

    QVariant value(Role role, int row = 0) { return model.data(model.index(row), static_cast<int>(role)); }
    std::string words(Role role, int row = 0) { return value(role, row).toString().toStdString(); }

    std::vector<ConversationSummary> rows{summary(1)};
    std::shared_ptr<AvatarStore> avatars = std::make_shared<AvatarStore>();
    Model model{rows, avatars};
};

TEST_F(ConversationListModelTest, givesTitleMonogramAndID) {
    EXPECT_EQ(words(Role::title), "Ada Quill");
    EXPECT_EQ(words(Role::monogram), "AQ");
    EXPECT_EQ(words(Role::conversationID), "1");
}

TEST_F(ConversationListModelTest, givesNoLastMessageWhereThereIsNone) {
    EXPECT_EQ(words(Role::lastMessage), "");
    rows[0].lastMessage = "See you";
    EXPECT_EQ(words(Role::lastMessage), "See you");
}

TEST_F(ConversationListModelTest, countsInGroupsOfDigits) {
    rows[0].messageCount = 12'408;
    rows[0].attachmentCount = 31;
    EXPECT_EQ(words(Role::counts), countWords(12'408) + " messages · 31 attachments");
}

TEST_F(ConversationListModelTest, writesTheDayOfTheNewestMessageShort) {
    EXPECT_EQ(words(Role::date), "");
    rows[0].lastMessageDate = parseISO8601Seconds("2026-11-15T12:00:00Z");
    EXPECT_EQ(words(Role::date), DateText::user().monthAndDay(*rows[0].lastMessageDate));
}

TEST_F(ConversationListModelTest, writesTheDaysOfTheOldestAndTheNewestInFull) {
    EXPECT_EQ(words(Role::dates), "");
    rows[0].lastMessageDate = parseISO8601Seconds("2026-11-15T12:00:00Z");
    const std::string last = DateText::user().day(*rows[0].lastMessageDate);
    EXPECT_EQ(words(Role::dates), last);
    rows[0].firstMessageDate = rows[0].lastMessageDate;
    EXPECT_EQ(words(Role::dates), last);
    rows[0].firstMessageDate = parseISO8601Seconds("2019-03-04T12:00:00Z");
    EXPECT_EQ(words(Role::dates), DateText::user().day(*rows[0].firstMessageDate) + " – " + last);
}

TEST_F(ConversationListModelTest, isAGroupWithMoreThanOneOther) {
    rows[0].participantAddresses = {"+12125550101"};
    EXPECT_FALSE(value(Role::isGroup).toBool());
    rows[0].participantAddresses.emplace_back("ada@example.com");
    EXPECT_TRUE(value(Role::isGroup).toBool());
}

TEST_F(ConversationListModelTest, leadsFromAPictureToItsBytes) {
    EXPECT_EQ(words(Role::avatar), "");
    rows[0].avatarData = Data{1, 2, 3};
    const std::string address = words(Role::avatar);
    const std::string scheme = "image://avatar/";
    ASSERT_EQ(address.substr(0, scheme.size()), scheme);
    ASSERT_NE(avatars->picture(address.substr(scheme.size())), nullptr);
    EXPECT_EQ(*avatars->picture(address.substr(scheme.size())), (Data{1, 2, 3}));
}

TEST_F(ConversationListModelTest, looksAtThePicturesOfANewListAnew) {
    rows[0].avatarData = Data{1, 2, 3};
    const std::string address = words(Role::avatar);
    rows[0].avatarData->front() = 2; // In its place, as another list may lie.
    EXPECT_EQ(words(Role::avatar), address);
    model.reset();
    EXPECT_NE(words(Role::avatar), address);
}

TEST_F(ConversationListModelTest, namesEachRoleOfItsRows) {
    const auto names = model.roleNames();
    EXPECT_EQ(names.size(), 9);
    for (auto name = names.begin(); name != names.end(); ++name)
        EXPECT_TRUE(model.data(model.index(0), name.key()).isValid()) << name.value().toStdString();
}

TEST_F(ConversationListModelTest, givesNothingBesideItsRowsAndRoles) {
    EXPECT_FALSE(model.data({}, static_cast<int>(Role::title)).isValid());
    EXPECT_FALSE(model.data(model.index(0), Qt::DisplayRole).isValid());
    EXPECT_FALSE(model.index(1).isValid());
    EXPECT_EQ(model.rowCount(model.index(0)), 0);
}

TEST_F(ConversationListModelTest, findsRowsByID) {
    rows.push_back(summary(2));
    EXPECT_EQ(model.rowOf(QStringLiteral("2")), 1);
    EXPECT_EQ(model.rowOf(QStringLiteral("3")), -1);
    EXPECT_EQ(model.rowOf(QString()), -1);
    EXPECT_EQ(model.idAt(1), QStringLiteral("2"));
    EXPECT_EQ(model.idAt(2), QString());
    EXPECT_EQ(model.idAt(-1), QString());
}

TEST_F(ConversationListModelTest, announcesOneResetAndTheCount) {
    QSignalSpy resets(&model, &Model::modelReset);
    QSignalSpy counts(&model, &Model::countChanged);
    rows.push_back(summary(2));
    model.reset();
    EXPECT_EQ(resets.count(), 1);
    EXPECT_EQ(counts.count(), 1);
    EXPECT_EQ(model.rowCount(), 2);
}

/// Each count of a row looks its words up, so the look-ups tell for how many rows words were made.
class WordsOfRows : public ConversationListModelTest {
protected:
    WordsOfRows() {
        useTranslation([this](std::string_view english) {
            ++lookUps;
            return std::string(english);
        });
        rows.clear();
        for (int row = 0; row < 20'000; ++row) {
            rows.push_back(summary(row));
            rows.back().avatarData = Data(1'600, static_cast<std::uint8_t>(row % 251));
        }
    }

    int lookUps = 0;
};

TEST_F(WordsOfRows, areMadeForNoneByAReset) {
    model.reset();
    EXPECT_EQ(model.rowCount(), 20'000);
    EXPECT_EQ(lookUps, 0);
}

TEST_F(WordsOfRows, areMadeForTheRowsThatAreAskedFor) {
    model.reset();
    for (const int row : {0, 10'000, 19'999})
        EXPECT_FALSE(words(Role::counts, row).empty());
    EXPECT_EQ(lookUps, 3 * 2) << "two counts a row";
}

TEST_F(WordsOfRows, areNotMadeForASearchOfARow) {
    EXPECT_EQ(model.rowOf(QStringLiteral("19999")), 19'999);
    EXPECT_EQ(lookUps, 0);
}

} // namespace
} // namespace quillbook
