#include "shell/desktop/linux/DesktopFiles.h"
#include "tests/desktop/PrivateDesktop.h"
#include "tests/desktop/RecordingService.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <future>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

namespace quillbook {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

const QString manager = QStringLiteral("org.freedesktop.FileManager1");
const QString showItems = QStringLiteral("ShowItems");

/// A desktop whose programs write down what they are given, each argument on its end with a NUL.
class Files : public test::PrivateDesktop {
protected:
    Files() {
        addProgram("browser", "%u");
        addProgram("editor", "%f");
        addProgram("folders", "%f");
        setPrograms("x-scheme-handler/https=browser.desktop\ntext/html=editor.desktop\n"
                    "inode/directory=folders.desktop\ntext/plain=editor.desktop\n");
    }

    void addProgram(const std::string& name, const std::string& field) {
        addScript("bin/" + name, name);
        home_.write("data/applications/" + name + ".desktop",
                    "[Desktop Entry]\nType=Application\nName=" + name + "\nExec=\"" +
                        (home_ / ("bin/" + name)).string() + "\" " + field + "\n");
    }

    void addScript(const std::string& file, const std::string& log) {
        const std::string target = (home_ / (log + ".log")).string();
        const auto script = home_.write(file, "#!/bin/sh\nprintf '%s\\0' \"$@\" >> '" + target + "'\n");
        std::filesystem::permissions(script, std::filesystem::perms::owner_all);
    }

    void setPrograms(const std::string& defaults) {
        home_.write("config/mimeapps.list", "[Default Applications]\n" + defaults);
    }

    /// What a program was given, in the order of its starts.
    std::vector<std::string> given(const std::string& program) const {
        std::vector<std::string> arguments;
        std::ifstream log(home_ / (program + ".log"), std::ios::binary);
        for (std::string argument; std::getline(log, argument, '\0');) {
            arguments.push_back(argument);
        }
        return arguments;
    }

    bool awaitStarts(const std::string& program, std::size_t count) const {
        return test::await([&] { return given(program).size() >= count; });
    }

    /// Invented words in a file of the album's folder.
    std::filesystem::path albumFile(const std::string& name) const {
        return home_.write("album/" + name, "text");
    }
};

struct NameCase {
    std::string name;
    std::string file;
    std::string address; ///< As URIs have it.
};

const auto oddNames = testing::Values(
    NameCase{"plain", "page.txt", "page.txt"}, NameCase{"blank", "Ann and Ben.txt", "Ann%20and%20Ben.txt"},
    NameCase{"percent", "100%41.txt", "100%2541.txt"}, NameCase{"marks", "a#b?c&d.txt", "a%23b%3Fc%26d.txt"},
    NameCase{"shell", "$(id) `id`; 'x' \"y\" *.txt",
             "%24%28id%29%20%60id%60%3B%20%27x%27%20%22y%22%20%2A.txt"},
    NameCase{"backslash", "a\\nb\\.txt", "a%5Cnb%5C.txt"}, NameCase{"lineBreak", "a\nb.txt", "a%0Ab.txt"},
    NameCase{"dash", "-rf.txt", "-rf.txt"}, NameCase{"letters", "Zo\xC3\xAB.txt", "Zo%C3%AB.txt"},
    NameCase{"noEncoding", "a\xFF.txt", "a%FF.txt"}, NameCase{"fieldCode", "%U.txt", "%25U.txt"});

const auto caseName = [](const auto& one) { return one.param.name; };

// Revealing.

class Revealing : public Files {
protected:
    Revealing() : service_(answering_, manager, QStringLiteral("/org/freedesktop/FileManager1")) {
        service_.answerWith(showItems, {});
    }

    std::vector<std::string> shown() const {
        std::vector<std::string> addresses;
        for (const auto& call : service_.calls(showItems)) {
            addresses.push_back(call.arguments()[0].toStringList().join(QLatin1Char(' ')).toStdString());
        }
        return addresses;
    }

    bool awaitShown(std::size_t count) {
        return test::await([&] { return service_.count(showItems) >= count; });
    }

    std::string address(const std::string& name) const {
        return "file://" + home_.path().string() + "/album/" + name;
    }

    test::PrivateBus bus_;
    QDBusConnection answering_ = bus_.connect();
    test::RecordingService service_;
    DesktopFiles subject_{bus_.connect(), 20s};
};

class RevealingOddNames : public Revealing, public testing::WithParamInterface<NameCase> {};

TEST_P(RevealingOddNames, givesTheFileManagerTheBytesOfTheName) {
    subject_.reveal(albumFile(GetParam().file));
    ASSERT_TRUE(awaitShown(1));
    EXPECT_THAT(shown(), ElementsAre(address(GetParam().address)));
}

INSTANTIATE_TEST_SUITE_P(Table, RevealingOddNames, oddNames, caseName);

TEST_F(Revealing, speaksTheFileManagersOwnTypes) {
    subject_.reveal(albumFile("page.txt"));
    ASSERT_TRUE(awaitShown(1));
    EXPECT_EQ(service_.calls(showItems)[0].signature(), QStringLiteral("ass"));
    EXPECT_EQ(service_.calls(showItems)[0].interface(), manager);
}

TEST_F(Revealing, selectsAFolderAsItselfWithOrWithoutASlash) {
    const auto folder = albumFile("page.txt").parent_path();
    subject_.reveal(folder);
    subject_.reveal(folder / "");
    ASSERT_TRUE(awaitShown(2));
    const std::string expected = "file://" + folder.string();
    EXPECT_THAT(shown(), ElementsAre(expected, expected));
}

TEST_F(Revealing, opensNothingForAFileThatIsGone) {
    subject_.reveal(home_ / "album/gone");
    subject_.reveal({});
    subject_.reveal(albumFile("page.txt"));
    ASSERT_TRUE(awaitShown(1));
    EXPECT_THAT(shown(), ElementsAre(address("page.txt")));
}

TEST_F(Revealing, opensNoSecondWindowWhereTheFileManagerAnswered) {
    const auto file = albumFile("page.txt");
    subject_.reveal(file);
    ASSERT_TRUE(awaitShown(1));
    subject_.open(file);
    ASSERT_TRUE(awaitStarts("editor", 1));
    EXPECT_THAT(given("folders"), IsEmpty());
}

TEST_F(Revealing, opensTheFolderAfterAnError) {
    service_.answerWithError(showItems);
    const auto file = albumFile("page.txt");
    subject_.reveal(file);
    ASSERT_TRUE(awaitStarts("folders", 1));
    EXPECT_THAT(given("folders"), ElementsAre(file.parent_path().string()));
}

TEST_F(Revealing, opensTheFolderWhereNoAnswerComes) {
    service_.neverAnswer(showItems);
    DesktopFiles impatient(bus_.connect(), 200ms);
    const auto file = albumFile("page.txt");
    impatient.reveal(file);
    ASSERT_TRUE(awaitStarts("folders", 1));
    EXPECT_THAT(given("folders"), ElementsAre(file.parent_path().string()));
}

TEST_F(Revealing, givesASlowFileManagerItsTime) {
    QTimer start;
    start.setSingleShot(true);
    service_.answer(showItems, [&](const QDBusMessage& call) {
        QObject::connect(&start, &QTimer::timeout, [this, call] { answering_.send(call.createReply()); });
        start.start(6s);
        return std::nullopt;
    });
    DesktopFiles usual(bus_.connect());
    const auto file = albumFile("page.txt");
    usual.reveal(file);
    ASSERT_TRUE(awaitShown(1));
    ASSERT_TRUE(test::await([&] { return !start.isActive(); }));
    usual.open(file);
    ASSERT_TRUE(awaitStarts("editor", 1));
    EXPECT_THAT(given("folders"), IsEmpty());
}

TEST_F(Files, areShownByAFileManagerOfTheDistribution) {
    test::PrivateBus bus({"org.xfce.Thunar.FileManager1", "org.xfce.Xfconf"});
    DesktopFiles subject(bus.connect());
    subject.reveal(albumFile("page.txt"));
    // Its window is named after the folder.
    EXPECT_TRUE(test::await([] {
        return !test::outputOf({"xdotool", "search", "--onlyvisible", "--name", "^album( |$)"}).empty();
    }));
    EXPECT_THAT(given("folders"), IsEmpty());
}

TEST_F(Files, withoutAFileManagerOpenTheFolder) {
    test::PrivateBus bus;
    DesktopFiles subject(bus.connect());
    subject.reveal(albumFile("page.txt"));
    ASSERT_TRUE(awaitStarts("folders", 1));
    EXPECT_THAT(given("folders"), ElementsAre((home_ / "album").string()));
}

TEST_F(Files, withoutABusOpenTheFolder) {
    DesktopFiles subject(test::noBus());
    subject.reveal(albumFile("page.txt"));
    ASSERT_TRUE(awaitStarts("folders", 1));
    EXPECT_THAT(given("folders"), ElementsAre((home_ / "album").string()));
}

TEST_F(Files, onABusThatEndsOpenTheFolder) {
    test::PrivateBus bus;
    DesktopFiles subject(bus.connect());
    bus.stop();
    subject.reveal(albumFile("page.txt"));
    EXPECT_TRUE(awaitStarts("folders", 1));
}

// Opening.

class OpeningOddNames : public Files, public testing::WithParamInterface<NameCase> {};

TEST_P(OpeningOddNames, givesTheProgramTheBytesOfTheName) {
    DesktopFiles subject(test::noBus());
    const auto file = albumFile(GetParam().file);
    subject.open(file);
    ASSERT_TRUE(awaitStarts("editor", 1));
    EXPECT_THAT(given("editor"), ElementsAre(file.string()));
}

TEST_P(OpeningOddNames, givesTheBrowserTheBytesOfTheIndexsName) {
    DesktopFiles subject(test::noBus());
    const auto file = albumFile(GetParam().file + "/index.html");
    subject.open(file);
    ASSERT_TRUE(awaitStarts("browser", 1));
    EXPECT_THAT(given("browser"), ElementsAre(file.string()));
}

INSTANTIATE_TEST_SUITE_P(Table, OpeningOddNames, oddNames, caseName);

class Opening : public Files {
protected:
    DesktopFiles subject_{test::noBus()};
};

TEST_F(Opening, prefersTheBrowserToTheProgramForTheType) {
    subject_.open(albumFile("index.html"));
    ASSERT_TRUE(awaitStarts("browser", 1));
    EXPECT_THAT(given("editor"), IsEmpty());
}

TEST_F(Opening, takesTheProgramForTheTypeWhereThereIsNoBrowser) {
    setVariable("XDG_DATA_DIRS", home_ / "nowhere");
    setPrograms("text/html=editor.desktop\napplication/octet-stream=editor.desktop\n"
                "text/plain=editor.desktop\n");
    const auto file = albumFile("index.html");
    subject_.open(file);
    ASSERT_TRUE(awaitStarts("editor", 1));
    EXPECT_THAT(given("editor"), ElementsAre(file.string()));
}

TEST_F(Opening, takesTheProgramForTheTypeWhereTheBrowserDoesNotStart) {
    home_.write("data/applications/browser.desktop",
                "[Desktop Entry]\nType=Application\nName=b\nExec=/no/such/program %u\n");
    const auto file = albumFile("index.html");
    subject_.open(file);
    ASSERT_TRUE(awaitStarts("editor", 1));
    EXPECT_THAT(given("editor"), ElementsAre(file.string()));
}

TEST_F(Opening, opensNothingForAFileThatIsGone) {
    subject_.open(home_ / "album/index.html");
    subject_.open({});
    const auto file = albumFile("other.html");
    subject_.open(file);
    ASSERT_TRUE(awaitStarts("browser", 1));
    EXPECT_THAT(given("browser"), ElementsAre(file.string()));
}

TEST_F(Opening, goesByTheOtherLauncherWhereTheFirstIsMissing) {
    addScript("only/xdg-open", "xdg-open");
    setVariable("PATH", home_ / "only");
    const auto file = albumFile("a b%20\xFF.html");
    subject_.open(file);
    ASSERT_TRUE(awaitStarts("xdg-open", 1));
    EXPECT_THAT(given("xdg-open"), ElementsAre(file.string()));
}

TEST_F(Opening, goesByTheOtherLauncherWhereTheFirstFails) {
    addScript("only/xdg-open", "xdg-open");
    const auto script = home_.write("only/gio", "#!/bin/sh\nexit 1\n");
    std::filesystem::permissions(script, std::filesystem::perms::owner_all);
    setVariable("PATH", home_ / "only");
    subject_.open(albumFile("index.html"));
    EXPECT_TRUE(awaitStarts("xdg-open", 1));
}

TEST_F(Opening, withoutAnyLauncherDoesNothing) {
    const std::string path = ::qgetenv("PATH").toStdString();
    setVariable("PATH", home_ / "only");
    subject_.open(albumFile("first.html"));
    // Nothing tells that nothing was started: the look at the file is given time to end before a launcher is
    // back.
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < 500)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    setVariable("PATH", path);
    subject_.open(albumFile("index.html"));
    ASSERT_TRUE(awaitStarts("browser", 1));
    EXPECT_EQ(given("browser").size(), 1U);
}

/// A disk that lets nobody go until the test says so.
class SlowDisk {
public:
    ~SlowDisk() { comeBack(); }
    FileLook look() const {
        return [back = back_.get_future().share(), lookers = lookers_](const std::filesystem::path&) {
            ++*lookers;
            return back.wait_for(20s) == std::future_status::ready;
        };
    }
    int lookers() const { return *lookers_; }
    void comeBack() {
        if (!std::exchange(isBack_, true)) back_.set_value();
    }

private:
    mutable std::promise<void> back_;
    std::shared_ptr<std::atomic<int>> lookers_ = std::make_shared<std::atomic<int>>(0);
    bool isBack_ = false;
};

TEST_F(Revealing, waitsForASlowDiskApartFromThisThread) {
    SlowDisk disk;
    DesktopFiles subject(bus_.connect(), 20s, disk.look());
    subject.reveal("/slow/album");
    ASSERT_TRUE(test::await([&] { return disk.lookers() == 1; }));
    EXPECT_THAT(shown(), IsEmpty());
    disk.comeBack();
    ASSERT_TRUE(awaitShown(1));
    EXPECT_THAT(shown(), ElementsAre("file:///slow/album"));
}

TEST_F(Opening, waitsForASlowDiskApartFromThisThread) {
    SlowDisk disk;
    DesktopFiles subject(test::noBus(), 20s, disk.look());
    subject.open(home_ / "album.html");
    ASSERT_TRUE(test::await([&] { return disk.lookers() == 1; }));
    EXPECT_THAT(given("browser"), IsEmpty());
    disk.comeBack();
    EXPECT_TRUE(awaitStarts("browser", 1));
}

TEST_F(Revealing, withASlowDiskMayBeGoneFirst) {
    SlowDisk disk;
    std::make_unique<DesktopFiles>(bus_.connect(), 20s, disk.look())->reveal("/slow/album");
    ASSERT_TRUE(test::await([&] { return disk.lookers() == 1; }));
    disk.comeBack();
    subject_.reveal(albumFile("page.txt"));
    ASSERT_TRUE(awaitShown(1));
    EXPECT_THAT(shown(), ElementsAre(address("page.txt")));
}

TEST_F(Files, areOpenedEvenIfNobodyWaits) {
    std::make_unique<DesktopFiles>(test::noBus())->open(albumFile("index.html"));
    EXPECT_TRUE(awaitStarts("browser", 1));
}

} // namespace
} // namespace quillbook
