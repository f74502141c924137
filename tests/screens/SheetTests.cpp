#include "tests/screens/Interaction.h"

namespace quillbook::test {
namespace {

// The password.

class PasswordSheet : public Interaction {
protected:
    PasswordSheet() {
        at("password");
        preparations = provider->preparations();
    }
    QQuickItem* field() const {
        for (QQuickItem* each : itemsWith("echoMode"))
            if (each->property("echoMode").toInt() != 0) return each;
        return nullptr;
    }

    int preparations = 0;
};

TEST_F(PasswordSheet, hasTheKeyboardInItsField) {
    ASSERT_NE(field(), nullptr);
    EXPECT_TRUE(field()->hasActiveFocus());
}

TEST_F(PasswordSheet, doesNothingWhileEmpty) {
    EXPECT_FALSE(button("Unlock")->isEnabled());
    press(Qt::Key_Return);
    become();
    EXPECT_EQ(provider->preparations(), preparations);
    EXPECT_NE(field(), nullptr);
}

TEST_F(PasswordSheet, unlocksWithReturn) {
    type(words("secret"));
    press(Qt::Key_Return);
    ASSERT_NE(button("Unlocking…"), nullptr);
    EXPECT_FALSE(button("Unlocking…")->isEnabled());
    EXPECT_EQ(field()->property("text").toString(), QString());
    press(Qt::Key_Return);
    become();
    EXPECT_EQ(provider->preparations(), preparations + 1);
    EXPECT_EQ(provider->prepared().back().password, "secret");
    EXPECT_EQ(model->state().selectedSourceID, "locked-backup");
    EXPECT_EQ(field(), nullptr);
}

TEST_F(PasswordSheet, unlocksWithTheButton) {
    type(words("secret"));
    pushed("Unlock");
    become();
    EXPECT_EQ(provider->prepared().back().password, "secret");
}

TEST_F(PasswordSheet, hidesWhatIsTyped) {
    type(words("secret"));
    for (const QQuickItem* each : itemsWith("displayText"))
        EXPECT_FALSE(each->property("displayText").toString().contains(words("secret")));
    EXPECT_FALSE(shows("secret"));
}

TEST_F(PasswordSheet, closesWithEscapeAndForgets) {
    type(words("secret"));
    QQuickItem* typed = field();
    press(Qt::Key_Escape);
    become();
    EXPECT_FALSE(adapter->isAskingForPassword());
    EXPECT_EQ(typed->property("text").toString(), QString());
    EXPECT_EQ(field(), nullptr);
    EXPECT_EQ(provider->preparations(), preparations);
}

TEST_F(PasswordSheet, overwritesWhatWasTypedInVain) {
    for (const bool byKey : {true, false}) {
        adapter->selectSource(words("locked-backup"));
        become();
        type(words("secret"));
        const QString shared = field()->property("text").toString();
        ASSERT_EQ(shared, words("secret"));
        if (byKey)
            press(Qt::Key_Escape);
        else
            pushed("Cancel");
        become();
        EXPECT_EQ(shared, QString(6, QChar(u'\0'))) << byKey;
    }
}

TEST_F(PasswordSheet, keepsWhatIsTypedWhileASourceIsPrepared) {
    press(Qt::Key_Escape);
    become();
    provider->beforePrepared = [](const auto&, const auto&, std::stop_token) { throw SpokenError("No."); };
    adapter->selectSource(words("open-backup"));
    adapter->selectSource(words("locked-backup")); // While the first waits in the background.
    refresh();
    type(words("secret"));
    ASSERT_NE(button("Unlock"), nullptr);
    EXPECT_FALSE(button("Unlock")->isEnabled());
    press(Qt::Key_Return);
    refresh();
    ASSERT_NE(field(), nullptr);
    EXPECT_EQ(field()->property("text").toString(), words("secret"));
    EXPECT_TRUE(field()->isEnabled());
    EXPECT_EQ(button("Unlocking…"), nullptr);
    become();
    adapter->dismissError();
    provider->beforePrepared = {};
    become();
    EXPECT_TRUE(button("Unlock")->isEnabled());
    pushed("Unlock");
    become();
    EXPECT_EQ(provider->prepared().back().password, "secret");
    EXPECT_EQ(model->state().selectedSourceID, "locked-backup");
}

TEST_F(PasswordSheet, closesWithCancelAndForgets) {
    type(words("secret"));
    QQuickItem* typed = field();
    pushed("Cancel");
    become();
    EXPECT_FALSE(adapter->isAskingForPassword());
    EXPECT_EQ(typed->property("text").toString(), QString());
}

TEST_F(PasswordSheet, endsTheUnlockingWhereItIsClosed) {
    type(words("secret"));
    press(Qt::Key_Return);
    pushed("Cancel");
    become();
    EXPECT_EQ(model->state().selectedSourceID, "local-mac");
    EXPECT_FALSE(adapter->hasError());
}

TEST_F(PasswordSheet, givesWayToTheAlertAfterAWrongPassword) {
    provider->beforePrepared = [](const auto&, const auto&, std::stop_token) {
        throw SpokenError("The password is wrong.");
    };
    type(words("wrong"));
    press(Qt::Key_Return);
    become();
    EXPECT_EQ(field(), nullptr);
    EXPECT_FALSE(adapter->isAskingForPassword());
    EXPECT_TRUE(shows("The password is wrong."));
    EXPECT_EQ(focusedName(), words("OK"));
    press(Qt::Key_Return);
    become();
    EXPECT_FALSE(adapter->hasError());
    provider->beforePrepared = {};
    adapter->selectSource(words("locked-backup"));
    become();
    ASSERT_NE(field(), nullptr);
    EXPECT_TRUE(field()->hasActiveFocus());
    type(words("right"));
    press(Qt::Key_Return);
    become();
    EXPECT_EQ(model->state().selectedSourceID, "locked-backup");
}

// The alert and the guide.

TEST_F(Interaction, theAlertIsDismissedByEscapeReturnAndClick) {
    at("setup");
    destinationIsWritable = false;
    for (const char* way : {"Escape", "Return", "click"}) {
        adapter->startExport();
        refresh();
        EXPECT_TRUE(shows("This folder can’t be written to. Choose a different location to save the album."))
            << way;
        if (*way == 'E') press(Qt::Key_Escape);
        if (*way == 'R') press(Qt::Key_Return);
        if (*way == 'c') pushed("OK");
        become();
        EXPECT_FALSE(adapter->hasError()) << way;
        EXPECT_EQ(button("OK"), nullptr) << way;
    }
}

TEST_F(Interaction, theGuideOpensFromTheToolbarAndCloses) {
    at("list");
    for (const bool byKey : {true, false}) {
        pushed("How to Get Your Messages");
        refresh();
        EXPECT_TRUE(adapter->showingSetupGuide());
        EXPECT_TRUE(shows("Getting your messages onto this Mac"));
        if (byKey)
            press(Qt::Key_Escape);
        else
            pushed("Done");
        become();
        EXPECT_FALSE(adapter->showingSetupGuide());
        EXPECT_FALSE(shows("Getting your messages onto this Mac"));
    }
}

TEST_F(Interaction, theKeyboardComesBackFromASheet) {
    at("list");
    const QString before = focusedName();
    model->setShowingSetupGuide(true);
    refresh();
    EXPECT_EQ(focusedName(), words("Done"));
    press(Qt::Key_Escape);
    become();
    EXPECT_EQ(focusedName(), before);
}

} // namespace
} // namespace quillbook::test
