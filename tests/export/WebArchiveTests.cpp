#include "core/records/RecordsJSON.h"
#include "core/text/UTF8.h"
#include "export/WebArchive.h"
#include "export/WebResource.h"
#include "platform/FileError.h"
#include "tests/export/HostileText.h"
#include "tests/export/SampleMessages.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/TemporaryFolder.h"

#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillbook {
namespace {

using test::conversation;
using test::message;
using test::participant;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

/// An album's folder and, beside it, a folder of resources.
class WebArchive : public testing::Test {
protected:
    WebArchive() {
        std::filesystem::create_directory(root);
        folder.write("resources/Web/index.html",
                     "<html lang=\"{{LANG}}\"><title>{{TITLE}}</title><h1>{{TITLE}}</h1>");
        folder.write("resources/Web/styles.css", "body { content: \"{{TITLE}} & é\" }");
        folder.write("resources/Web/app.js", "\"use strict\";\n// {{LANG}} <&>\n");
    }

    void write(const ArchiveConversation& record, std::vector<std::string> languages = {}) const {
        writeWebArchive(record, root, {{folder / "resources"}, std::move(languages)});
    }
    std::string text(const std::string& name) const { return test::readFile(root / name); }
    bool exists(const std::string& name) const { return std::filesystem::exists(root / name); }
    std::string page(const std::string& title, std::vector<std::string> languages = {}) const {
        ArchiveConversation record = conversation();
        record.title = title;
        write(record, std::move(languages));
        return text("index.html");
    }
    std::vector<std::string> filesBelow(const std::filesystem::path& place) const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(place)) {
            if (!entry.is_directory()) names.push_back(entry.path().lexically_relative(place).string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    test::TemporaryFolder folder;
    std::filesystem::path root = folder / "album";
};

TEST_F(WebArchive, laysOutFourFiles) {
    write(conversation());
    EXPECT_THAT(filesBelow(root),
                ElementsAre("assets/app.js", "assets/styles.css", "data/messages.js", "index.html"));
}

TEST_F(WebArchive, makesTheAlbumsFolderToo) {
    std::filesystem::remove(root);
    write(conversation());
    EXPECT_TRUE(exists("index.html"));
}

TEST_F(WebArchive, fillsEveryTokenOfThePage) {
    EXPECT_EQ(page("Alma", {"pt"}), "<html lang=\"pt-BR\"><title>Alma</title><h1>Alma</h1>");
}

TEST_F(WebArchive, marksThePageAsEnglishForLanguagesItDoesNotSpeak) {
    EXPECT_THAT(page("Alma", {"nb-NO"}), HasSubstr("lang=\"en\""));
}

TEST_F(WebArchive, escapesTheTitleForHTML) {
    EXPECT_THAT(page("Al & <Bo> \"x\" 'y' &amp;"),
                HasSubstr("<title>Al &amp; &lt;Bo&gt; &quot;x&quot; 'y' &amp;amp;</title>"));
}

TEST_F(WebArchive, doesNotFillTitlesIntoATitle) {
    EXPECT_THAT(page("a {{TITLE}} b"), HasSubstr("<title>a {{TITLE}} b</title>"));
}

TEST_F(WebArchive, fillsTheLanguageBehindTheTitle) {
    EXPECT_THAT(page("{{LANG}}", {"de"}), HasSubstr("<title>de</title>"));
}

TEST_F(WebArchive, copiesStylesAndProgramAsTheyStand) {
    write(conversation());
    EXPECT_EQ(text("assets/styles.css"), test::readFile(folder / "resources/Web/styles.css"));
    EXPECT_EQ(text("assets/app.js"), test::readFile(folder / "resources/Web/app.js"));
}

TEST_F(WebArchive, replacesAnEarlierWebsite) {
    write(conversation({message("1", "a")}));
    write(conversation());
    EXPECT_THAT(filesBelow(root),
                ElementsAre("assets/app.js", "assets/styles.css", "data/messages.js", "index.html"));
    EXPECT_THAT(text("data/messages.js"), HasSubstr("\"messages\" : []"));
}

constexpr std::string_view dataStart = "window.QUILLBOOK_DATA = ";
constexpr std::string_view dataEnd = ";\n";

ArchiveConversation recordInScript(const std::string& script) {
    EXPECT_TRUE(script.starts_with(dataStart));
    EXPECT_TRUE(script.ends_with(dataEnd));
    const auto length = script.size() - dataStart.size() - dataEnd.size();
    return recordFromJSON<ArchiveConversation>(std::string_view(script).substr(dataStart.size(), length));
}

TEST_F(WebArchive, writesTheDataAsOneAssignment) {
    write(conversation());
    EXPECT_EQ(text("data/messages.js"), "window.QUILLBOOK_DATA = " + jsonText(conversation()) + ";\n");
}

TEST_F(WebArchive, keepsTheEndOfAScriptOutOfTheData) {
    const auto record = conversation({message("1", "</script><script>alert('&')</script>")});
    write(record);
    EXPECT_THAT(text("data/messages.js"),
                HasSubstr("\"\\u003C/script\\u003E\\u003Cscript\\u003Ealert('\\u0026')"));
    EXPECT_EQ(recordInScript(text("data/messages.js")), record);
}

TEST_F(WebArchive, keepsLineSeparatorsOutOfTheData) {
    const auto record = conversation({message("1", "a\u2028b\u2029c")});
    write(record);
    EXPECT_THAT(text("data/messages.js"), HasSubstr("\"a\\u2028b\\u2029c\""));
    EXPECT_EQ(recordInScript(text("data/messages.js")), record);
}

TEST_F(WebArchive, keepsTheValueOfHostileTextsOfAnySize) {
    test::HostileText texts(6);
    ArchiveConversation record = conversation();
    for (int round = 0; round < 300; ++round)
        record.messages.push_back(message(texts.next(), texts.next(2'000)));
    std::string separators;
    for (int count = 0; count < 100'000; ++count)
        separators += count % 2 == 0 ? "\u2028" : "é";
    record.messages.push_back(message("long", separators));
    write(record);
    const std::string script = text("data/messages.js");
    EXPECT_EQ(recordInScript(script), record);
    EXPECT_EQ(script.find_first_of("<>&"), std::string::npos);
    EXPECT_EQ(script.find("\u2028"), std::string::npos);
    EXPECT_EQ(script.find("\u2029"), std::string::npos);
}

TEST_F(WebArchive, repairsIllFormedTexts) {
    write(conversation({message("1", "a\xE2\x80<\xFF")}));
    EXPECT_THAT(text("data/messages.js"), HasSubstr("\"a\uFFFD\\u003C\uFFFD\""));
}

TEST_F(WebArchive, hasNoPictureFolderWithoutPictures) {
    ArchiveConversation record = conversation({}, {participant("+15550100")});
    writeAvatarAssets(record, root);
    EXPECT_FALSE(exists("assets"));
    write(record);
    EXPECT_FALSE(exists("assets/avatars"));
    EXPECT_TRUE(exists("assets"));
    EXPECT_TRUE(exists("data"));
}

TEST_F(WebArchive, hasNoPictureBytesInTheDataOncePicturesAreFiles) {
    ArchiveConversation record = conversation({}, {participant("+15550100")});
    record.participants[0].avatarData = Data{1, 2, 3};
    writeAvatarAssets(record, root);
    write(record);
    EXPECT_THAT(text("data/messages.js"), Not(HasSubstr("avatarData")));
    EXPECT_THAT(text("data/messages.js"),
                HasSubstr("\"avatarPath\" : \"assets/avatars/participant--15550100.jpg\""));
}

TEST_F(WebArchive, lacksAProgramOnlyAfterPageAndStylesAreWritten) {
    std::filesystem::remove(folder / "resources/Web/app.js");
    try {
        write(conversation());
        FAIL() << "nothing was thrown";
    } catch (const WebArchiveError& error) {
        EXPECT_EQ(error.description(), "The bundled web archive resource is missing.");
        EXPECT_EQ(error.missingResource, "app.js");
    }
    EXPECT_THAT(filesBelow(root), ElementsAre("assets/styles.css", "index.html"));
    EXPECT_TRUE(exists("data"));
}

TEST_F(WebArchive, lacksStylesOnlyAfterThePageIsWritten) {
    std::filesystem::remove(folder / "resources/Web/styles.css");
    EXPECT_THROW(write(conversation()), WebArchiveError);
    EXPECT_THAT(filesBelow(root), ElementsAre("index.html"));
}

TEST_F(WebArchive, lacksAPageOnlyAfterTheFoldersStand) {
    std::filesystem::remove(folder / "resources/Web/index.html");
    EXPECT_THROW(write(conversation()), WebArchiveError);
    EXPECT_THAT(filesBelow(root), ElementsAre());
    EXPECT_TRUE(exists("assets"));
    EXPECT_TRUE(exists("data"));
}

TEST_F(WebArchive, failsWhereAFileStandsInTheWayOfAFolder) {
    for (const std::string name : {"assets", "data"}) {
        const test::TemporaryFolder album;
        album.write(name, "");
        try {
            writeWebArchive(conversation(), album.path(), {{folder / "resources"}, {}});
            FAIL() << "nothing was thrown";
        } catch (const FileError& error) {
            EXPECT_EQ(error.action, FileError::Action::createFolder);
        }
    }
}

TEST_F(WebArchive, failsWhereAFolderStandsInTheWayOfAFile) {
    folder.write("album/index.html/inside", "");
    EXPECT_THROW(write(conversation()), FileError);
}

TEST_F(WebArchive, leavesNoHalfDataFileWhenTheDiskIsFull) {
    const test::FileSizeLimit limit(100'000);
    EXPECT_THROW(write(conversation({message("1", std::string(300'000, '<'))})), FileError);
    EXPECT_THAT(filesBelow(root), ElementsAre("assets/app.js", "assets/styles.css", "index.html"));
}

TEST(WebArchiveSettingsOfTheUser, haveSomewhereToLook) {
    EXPECT_THAT(WebArchiveSettings::user().resourceFolders, Not(testing::IsEmpty()));
}

class LoadWebResource : public testing::Test {
protected:
    std::string load() const {
        return loadWebResource("app", "js", {folder / "installed", folder / "source"});
    }
    test::TemporaryFolder folder;
};

TEST_F(LoadWebResource, looksInTheFirstPlacesWebFolderFirst) {
    folder.write("installed/Web/app.js", "1");
    folder.write("installed/app.js", "2");
    folder.write("source/Web/app.js", "3");
    EXPECT_EQ(load(), "1");
}

TEST_F(LoadWebResource, looksInTheFirstPlaceItselfSecond) {
    folder.write("installed/app.js", "2");
    folder.write("source/Web/app.js", "3");
    EXPECT_EQ(load(), "2");
}

TEST_F(LoadWebResource, looksInTheSecondPlacesWebFolderThird) {
    folder.write("source/Web/app.js", "3");
    folder.write("source/app.js", "4");
    EXPECT_EQ(load(), "3");
}

TEST_F(LoadWebResource, looksInTheSecondPlaceItselfLast) {
    folder.write("source/app.js", "4");
    EXPECT_EQ(load(), "4");
}

TEST_F(LoadWebResource, passesOverAFolderOfTheName) {
    folder.write("installed/Web/app.js/inside", "1");
    folder.write("source/app.js", "4");
    EXPECT_EQ(load(), "4");
}

TEST_F(LoadWebResource, namesWhatNoPlaceHolds) {
    try {
        load();
        FAIL() << "nothing was thrown";
    } catch (const WebArchiveError& error) {
        EXPECT_EQ(error.missingResource, "app.js");
        EXPECT_EQ(error.description(), "The bundled web archive resource is missing.");
    }
}

TEST_F(LoadWebResource, failsForWhatIsNoUTF8AndLooksNoFurther) {
    folder.write("installed/Web/app.js", "\xFF");
    folder.write("source/app.js", "4");
    EXPECT_THROW(load(), FileError);
}

class AvatarAssets : public testing::Test {
protected:
    ArchiveParticipant withPicture(const std::string& id,
                                   std::optional<std::string> type = std::nullopt) const {
        ArchiveParticipant record = participant("+15550100");
        record.id = id;
        record.avatarData = Data{'G', 'I', 'F', 0, 255};
        record.avatarMimeType = std::move(type);
        return record;
    }
    test::TemporaryFolder folder;
};

TEST_F(AvatarAssets, moveAPictureIntoAFile) {
    ArchiveConversation record = conversation({}, {withPicture("bo", "image/png")});
    writeAvatarAssets(record, folder.path());
    ArchiveParticipant expected = withPicture("bo", "image/png");
    expected.avatarData.reset();
    expected.avatarPath = "assets/avatars/bo.png";
    EXPECT_EQ(record.participants[0], expected);
    EXPECT_EQ(test::readFile(folder / "assets/avatars/bo.png"), std::string("GIF\0\xFF", 5));
}

TEST_F(AvatarAssets, leaveParticipantsWithoutPictureAlone) {
    ArchiveConversation record = conversation({}, {participant("a"), withPicture("bo")});
    writeAvatarAssets(record, folder.path());
    EXPECT_EQ(record.participants[0], participant("a"));
}

TEST_F(AvatarAssets, writeAnEmptyPictureToo) {
    ArchiveConversation record = conversation({}, {withPicture("bo")});
    record.participants[0].avatarData = Data{};
    writeAvatarAssets(record, folder.path());
    EXPECT_EQ(test::readFile(folder / "assets/avatars/bo.jpg"), "");
}

TEST_F(AvatarAssets, shareAFileWhereIDsDifferOnlyInHyphens) {
    ArchiveConversation record = conversation({}, {withPicture("a+b"), withPicture("a-b")});
    record.participants[1].avatarData = Data{'2'};
    writeAvatarAssets(record, folder.path());
    EXPECT_EQ(record.participants[0].avatarPath, "assets/avatars/a-b.jpg");
    EXPECT_EQ(record.participants[1].avatarPath, "assets/avatars/a-b.jpg");
    EXPECT_EQ(test::readFile(folder / "assets/avatars/a-b.jpg"), "2");
}

TEST_F(AvatarAssets, cutANameThatNoFileSystemTakes) {
    ArchiveConversation record = conversation({}, {withPicture(std::string(5'000, 'x'))});
    writeAvatarAssets(record, folder.path());
    EXPECT_EQ(record.participants[0].avatarPath, "assets/avatars/" + std::string(240, 'x') + ".jpg");
}

TEST_F(AvatarAssets, keepWhatWasDoneBeforeAFailure) {
    folder.write("assets/avatars/b.jpg/inside", "");
    ArchiveConversation record = conversation({}, {withPicture("a"), withPicture("b"), withPicture("c")});
    EXPECT_THROW(writeAvatarAssets(record, folder.path()), FileError);
    EXPECT_EQ(record.participants[0].avatarPath, "assets/avatars/a.jpg");
    EXPECT_FALSE(record.participants[0].avatarData.has_value());
    EXPECT_EQ(record.participants[1], withPicture("b"));
    EXPECT_EQ(record.participants[2], withPicture("c"));
}

TEST_F(AvatarAssets, failWhereAFileStandsInTheWayOfTheirFolder) {
    folder.write("assets/avatars", "");
    ArchiveConversation record = conversation({}, {withPicture("a")});
    EXPECT_THROW(writeAvatarAssets(record, folder.path()), FileError);
    EXPECT_EQ(record.participants[0], withPicture("a"));
}

struct AvatarCase {
    const char* name;
    std::string id;
    std::optional<std::string> type;
    std::string path;
};

class AvatarPath : public testing::TestWithParam<AvatarCase> {};

TEST_P(AvatarPath, comesFromIDAndType) {
    const test::TemporaryFolder folder;
    ArchiveConversation record = conversation({}, {participant("first"), participant("second")});
    record.participants[1].id = GetParam().id;
    record.participants[1].avatarMimeType = GetParam().type;
    record.participants[1].avatarData = Data{1};
    writeAvatarAssets(record, folder.path());
    EXPECT_EQ(record.participants[1].avatarPath, "assets/avatars/" + GetParam().path);
    EXPECT_EQ(test::readFile(folder / ("assets/avatars/" + GetParam().path)), "\x01");
}

INSTANTIATE_TEST_SUITE_P(
    Table, AvatarPath,
    testing::Values(
        AvatarCase{"png", "bo", "image/png", "bo.png"}, AvatarCase{"heic", "bo", "image/heic", "bo.heic"},
        AvatarCase{"gif", "bo", "image/gif", "bo.gif"}, AvatarCase{"jpeg", "bo", "image/jpeg", "bo.jpg"},
        AvatarCase{"webp", "bo", "image/webp", "bo.jpg"}, AvatarCase{"noType", "bo", std::nullopt, "bo.jpg"},
        AvatarCase{"otherCase", "bo", "image/PNG", "bo.jpg"},
        AvatarCase{"phoneNumber", "participant-+15550100", std::nullopt, "participant--15550100.jpg"},
        AvatarCase{"address", "participant-bo@example.org", std::nullopt, "participant-bo-example-org.jpg"},
        AvatarCase{"otherScripts", "é日٣", std::nullopt, "é日٣.jpg"},
        AvatarCase{"combiningMark", "e\u0301", std::nullopt, "e\u0301.jpg"},
        AvatarCase{"emoji", "a\U0001F600", std::nullopt, "a-.jpg"},
        AvatarCase{"punctuationAlone", "+.", std::nullopt, "--.jpg"},
        AvatarCase{"pathOutwards", "../../bo", std::nullopt, "------bo.jpg"},
        AvatarCase{"nul", std::string("a\0b", 3), std::nullopt, "a-b.jpg"},
        AvatarCase{"illFormed", "a\xFF", std::nullopt, "a-.jpg"},
        AvatarCase{"empty", "", std::nullopt, "participant-1.jpg"}),
    [](const auto& each) { return std::string(each.param.name); });

} // namespace
} // namespace quillbook
