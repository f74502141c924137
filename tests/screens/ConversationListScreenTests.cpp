#include "tests/screens/Interaction.h"

#include <string>
#include <vector>

namespace quillbook::test {
namespace {

using testing::ElementsAre;

// The list by keyboard.

TEST_F(Interaction, arrowsSelectInTheList) {
    atListKeys();
    std::vector<std::string> seen;
    for (const int key : {Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Up, Qt::Key_Up, Qt::Key_Up}) {
        press(key);
        seen.push_back(selected());
    }
    EXPECT_THAT(seen, ElementsAre("1", "2", "3", "2", "1", "1"));
}

TEST_F(Interaction, theListShowsThatItHasTheKeyboardUntilARowDoes) {
    atListKeys();
    refresh();
    const QQuickItem* list = window->activeFocusItem();
    EXPECT_TRUE(ringIsDrawnRound(*list));
    press(Qt::Key_Down);
    refresh();
    EXPECT_FALSE(ringIsDrawnRound(*list));
}

TEST_F(Interaction, homeAndEndSelectTheFirstAndTheLast) {
    atListKeys();
    press(Qt::Key_End);
    EXPECT_EQ(selected(), "5");
    press(Qt::Key_Down);
    EXPECT_EQ(selected(), "5");
    press(Qt::Key_Home);
    EXPECT_EQ(selected(), "1");
}

TEST_F(Interaction, pageKeysSelectAPageFurther) {
    fillWith(200);
    startedModel();
    open();
    press(Qt::Key_Down);
    press(Qt::Key_Home);
    press(Qt::Key_PageDown);
    const int page = std::stoi(selected());
    EXPECT_GT(page, 3);
    EXPECT_LT(page, 20);
    press(Qt::Key_PageDown);
    EXPECT_EQ(selected(), std::to_string(2 * page - 1));
    press(Qt::Key_PageUp);
    EXPECT_EQ(selected(), std::to_string(page));
    press(Qt::Key_PageUp);
    press(Qt::Key_PageUp);
    EXPECT_EQ(selected(), "1");
}

TEST_F(Interaction, returnGoesOnWithTheSelection) {
    atListKeys();
    press(Qt::Key_Return);
    EXPECT_EQ(adapter->screen(), AppModelAdapter::Screen::chooseConversation) << "nothing is selected";
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    EXPECT_EQ(adapter->screen(), AppModelAdapter::Screen::exportSetup);
}

TEST_F(Interaction, keysDoNothingInAnEmptyList) {
    at("list-empty-library");
    press(Qt::Key_Down);
    for (const int key :
         {Qt::Key_Down, Qt::Key_Up, Qt::Key_PageDown, Qt::Key_Home, Qt::Key_End, Qt::Key_Return})
        press(key);
    EXPECT_EQ(selected(), "");
}

TEST_F(Interaction, aClickSelectsAndTakesTheKeyboard) {
    at("list");
    click(find("QQuickRectangle", words("Emmy Noether")));
    EXPECT_EQ(selected(), "4");
    EXPECT_EQ(focusedName(), words("Conversations"));
    press(Qt::Key_Down);
    EXPECT_EQ(selected(), "5");
}

TEST_F(Interaction, theSelectedRowIsMarkedAlone) {
    at("list-selected");
    for (const QQuickItem* row : itemsWith("conversationID"))
        EXPECT_EQ(row->property("isSelected").toBool(), row->property("conversationID") == words("1"));
}

TEST_F(Interaction, aListOfTwentyThousandMakesTheRowsInSightAlone) {
    fillWith(20'000);
    startedModel();
    open();
    EXPECT_GT(rows(), 3U);
    EXPECT_LT(rows(), 40U);
    press(Qt::Key_Down);
    for (const int key : {Qt::Key_End, Qt::Key_PageUp, Qt::Key_Home, Qt::Key_End}) {
        press(key);
        refresh();
        EXPECT_LT(rows(), 40U);
    }
    EXPECT_EQ(selected(), "20000");
}

class Scrolling : public Interaction, public testing::WithParamInterface<bool> {};

TEST_P(Scrolling, theSelectedRowIsInSightAtOnceAndStaysThere) {
    fillWith(20'000);
    startedModel();
    open({.hasReducedMotion = GetParam()});
    press(Qt::Key_Down);
    press(Qt::Key_End);
    refresh();
    EXPECT_TRUE(isInSight("20000"));
    wait(300);
    EXPECT_TRUE(isInSight("20000"));
    press(Qt::Key_Home);
    refresh();
    EXPECT_TRUE(isInSight("1"));
    wait(300);
    EXPECT_TRUE(isInSight("1"));
}

INSTANTIATE_TEST_SUITE_P(Motion, Scrolling, testing::Bool(),
                         [](const auto& test) { return test.param ? "reduced" : "full"; });

// The search.

TEST_F(Interaction, typingReachesTheModelAndAsksOnce) {
    at("list");
    const auto store = provider->prepared().back().store;
    const std::size_t before = store->queries().size();
    type(words("emmy"));
    EXPECT_EQ(adapter->searchText(), words("emmy"));
    passSearchDelay();
    become();
    EXPECT_EQ(store->queries().size(), before + 1);
    EXPECT_EQ(store->queries().back(), "emmy");
}

TEST_F(Interaction, aSearchThatFindsNothingSaysSo) {
    at("list-empty-search");
    EXPECT_TRUE(shows("No Conversations"));
    EXPECT_TRUE(shows("Try a different search, or check that Messages has finished syncing."));
}

TEST_F(Interaction, clearingTheSearchShowsTheWholeListAgain) {
    at("list-empty-search");
    for (const bool byKey : {true, false}) {
        if (byKey)
            press(Qt::Key_Escape);
        else
            pushed("Clear Search");
        EXPECT_EQ(adapter->searchText(), QString());
        passSearchDelay();
        become();
        EXPECT_EQ(rows(), 5U);
        EXPECT_FALSE(shows("No Conversations"));
        type(words("zz"));
        passSearchDelay();
        become();
        EXPECT_EQ(rows(), 0U);
    }
}

TEST_F(Interaction, theSearchFieldShowsWhatTheModelSearches) {
    at("list");
    type(words("ab"));
    press(Qt::Key_Escape);
    model->setSearchText("Grace");
    refresh();
    EXPECT_EQ(find("QQuickTextField", words("Name, number, or message"))->property("text").toString(),
              words("Grace"));
}

TEST_F(Interaction, theSelectionIsKeptThroughASearchAndBack) {
    at("list-selected");
    type(words("Emmy"));
    passSearchDelay();
    become();
    EXPECT_EQ(selected(), "1");
    EXPECT_TRUE(shows("Choose a Conversation"));
    press(Qt::Key_Escape);
    passSearchDelay();
    become();
    EXPECT_EQ(selected(), "1");
    EXPECT_FALSE(shows("Choose a Conversation"));
    EXPECT_TRUE(isInSight("1"));
    EXPECT_EQ(provider->prepared().back().store->surveys().size(), 0U) << "nothing was selected anew";
}

// The frame of the list.

TEST_F(Interaction, aHiddenSidebarCanBeShownFromThePlaceholder) {
    at("list");
    EXPECT_TRUE(findAll("QQuickAbstractButton", words("Show Conversations")).empty());
    pushed("Hide Conversations");
    refresh();
    EXPECT_EQ(rows(), 0U);
    const auto offers = findAll("QQuickAbstractButton", words("Show Conversations"));
    ASSERT_EQ(offers.size(), 2U) << "in the toolbar and in the placeholder";
    click(offers.back());
    refresh();
    EXPECT_EQ(rows(), 5U);
    EXPECT_TRUE(findAll("QQuickAbstractButton", words("Show Conversations")).empty());
}

TEST_F(Interaction, theSourceMenuMarksTheSourceInUse) {
    at("list");
    pushed("This Mac");
    refresh();
    std::vector<std::string> marked;
    for (const QQuickItem* item : itemsWith("source"))
        if (item->inherits("QQuickMenuItem"))
            marked.push_back(item->property("text").toString().toStdString() +
                             (item->property("checked").toBool() ? " +" : " -"));
    EXPECT_THAT(marked, ElementsAre("This Mac +", "Ada’s iPhone -", "Ada’s iPhone -"));
}

TEST_F(Interaction, theSourceMenuChangesTheSourceAndTheMark) {
    at("list");
    pushed("This Mac");
    refresh();
    click(findAll("QQuickMenuItem", words("Ada’s iPhone")).front());
    become();
    EXPECT_EQ(model->state().selectedSourceID, "open-backup");
    pushed("Ada’s iPhone");
    refresh();
    ASSERT_NE(find("QQuickMenuItem", words("This Mac")), nullptr);
    EXPECT_FALSE(find("QQuickMenuItem", words("This Mac"))->property("checked").toBool());
    EXPECT_TRUE(findAll("QQuickMenuItem", words("Ada’s iPhone")).front()->property("checked").toBool());
}

TEST_F(Interaction, aFailedChangeLeavesTheMarkWhereItWas) {
    at("list");
    provider->beforePrepared = [](const auto&, const auto&, std::stop_token) { throw SpokenError("No."); };
    pushed("This Mac");
    refresh();
    click(findAll("QQuickMenuItem", words("Ada’s iPhone")).front());
    become();
    press(Qt::Key_Escape); // The alert.
    refresh();
    pushed("This Mac");
    refresh();
    ASSERT_NE(find("QQuickMenuItem", words("This Mac")), nullptr);
    EXPECT_TRUE(find("QQuickMenuItem", words("This Mac"))->property("checked").toBool());
    EXPECT_FALSE(findAll("QQuickMenuItem", words("Ada’s iPhone")).front()->property("checked").toBool());
}

} // namespace
} // namespace quillbook::test
