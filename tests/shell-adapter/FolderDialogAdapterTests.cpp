#include "shell/adapter/FolderDialogAdapter.h"

#include <QCoreApplication>
#include <QSignalSpy>
#include <QUrl>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

using Folder = std::optional<std::filesystem::path>;

class FolderDialogAdapterTest : public testing::Test {
protected:
    void ask() {
        dialog->chooseFolder({"Choose Export Folder", "Choose", "/home/ada/Downloads"},
                             [this](const Folder& folder) { answers.push_back(folder); });
    }
    static QUrl url(const char* path) { return QUrl::fromLocalFile(QString::fromUtf8(path)); }

    std::unique_ptr<FolderDialogAdapter> dialog = std::make_unique<FolderDialogAdapter>();
    std::vector<Folder> answers;
};

TEST_F(FolderDialogAdapterTest, asksNothingAtFirst) {
    EXPECT_FALSE(dialog->isAsking());
}

TEST_F(FolderDialogAdapterTest, showsTheQuestion) {
    QSignalSpy changes(dialog.get(), &FolderDialogAdapter::changed);
    ask();
    EXPECT_TRUE(dialog->isAsking());
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(dialog->title(), QStringLiteral("Choose Export Folder"));
    EXPECT_EQ(dialog->prompt(), QStringLiteral("Choose"));
    EXPECT_EQ(dialog->folder(), url("/home/ada/Downloads"));
    EXPECT_TRUE(answers.empty());
}

TEST_F(FolderDialogAdapterTest, answersWithTheFolderThatIsAccepted) {
    ask();
    dialog->accept(url("/home/ada/Älben & mehr #1"));
    EXPECT_EQ(answers, std::vector<Folder>{"/home/ada/Älben & mehr #1"});
    EXPECT_FALSE(dialog->isAsking());
}

TEST_F(FolderDialogAdapterTest, answersWithNothingWhereItIsRejected) {
    ask();
    dialog->reject();
    EXPECT_EQ(answers, std::vector<Folder>{std::nullopt});
}

TEST_F(FolderDialogAdapterTest, answersWithNothingToAnAcceptedNothing) {
    ask();
    dialog->accept(QUrl());
    EXPECT_EQ(answers, std::vector<Folder>{std::nullopt});
}

TEST_F(FolderDialogAdapterTest, takesNoFolderOfTheNetwork) {
    ask();
    dialog->accept(QUrl(QStringLiteral("sftp://example.com/albums")));
    EXPECT_EQ(answers, std::vector<Folder>{std::nullopt});
}

TEST_F(FolderDialogAdapterTest, answersOnce) {
    ask();
    dialog->accept(url("/a"));
    dialog->accept(url("/b"));
    dialog->reject();
    EXPECT_EQ(answers, std::vector<Folder>{"/a"});
}

TEST_F(FolderDialogAdapterTest, refusesAQuestionWhileAnotherIsOpen) {
    ask();
    std::vector<Folder> second;
    dialog->chooseFolder({"Another", "Take", "/tmp"},
                         [&](const Folder& folder) { second.push_back(folder); });
    EXPECT_TRUE(second.empty()) << "never within the call";
    EXPECT_EQ(dialog->title(), QStringLiteral("Choose Export Folder"));
    QCoreApplication::processEvents();
    EXPECT_EQ(second, std::vector<Folder>{std::nullopt});
    EXPECT_TRUE(answers.empty());
    EXPECT_TRUE(dialog->isAsking());
}

TEST_F(FolderDialogAdapterTest, mayBeAskedAgainByAnAnswer) {
    dialog->chooseFolder({}, [this](const Folder&) { ask(); });
    dialog->accept(url("/a"));
    EXPECT_TRUE(dialog->isAsking());
    dialog->accept(url("/b"));
    EXPECT_EQ(answers, std::vector<Folder>{"/b"});
}

TEST_F(FolderDialogAdapterTest, dropsAnOpenQuestionAtItsEnd) {
    ask();
    dialog.reset();
    QCoreApplication::processEvents();
    EXPECT_TRUE(answers.empty());
}

} // namespace
} // namespace quillbook
