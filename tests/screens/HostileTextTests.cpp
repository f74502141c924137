#include "tests/screens/ScreenStates.h"
#include "tests/screens/TextFit.h"

#include <QQuickItem>
#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace quillbook::test {
namespace {

struct HostileText {
    const char* name;
    std::string text;

    friend std::ostream& operator<<(std::ostream& out, const HostileText& each) { return out << each.name; }
};

std::string repeated(const std::string& text, std::size_t size) {
    std::string all;
    while (all.size() < size)
        all += text;
    return all;
}

std::vector<HostileText> hostileTexts() {
    return {
        {"html",
         "<h1>Ada</h1><img src='file:///etc/passwd'><a href='https://example.com'>Quill</a>&amp;<br>"},
        {"oneEndlessWord", std::string(100'000, 'W')},
        {"wordsWithoutEnd", repeated("Ada Quill ", 100'000)},
        {"newlines", repeated("Ada\nQuill\r\n\u2028\u2029\v\f", 2'000)},
        {"bidiControls", repeated("\u202EAda\u2066\u202DQuill\u2067", 2'000)},
        {"zeroBytes", std::string("Ada\0Quill\0", 10) + std::string(1'000, '\0')},
        {"marks", "A" + repeated("\u0301\u0316", 3'000)},
        {"tabs", repeated("\t", 2'000) + "Ada"},
        {"formats", "%1 %2 {} {0} %n %s &Ada ${x}"},
        {"brokenBytes", "\xFF\xFE Ada \xED\xA0\x80 \xC3"},
    };
}

/// The same words wherever strangers may put words: titles, messages, names of devices, folders, errors.
class HostileScreens : public ScreenStage, public testing::WithParamInterface<HostileText> {
protected:
    HostileScreens() {
        const std::string& text = GetParam().text;
        auto rows = inventedConversations();
        for (std::size_t each : {0U, 1U}) {
            rows[each].title = text;
            rows[each].lastMessage = text;
            rows[each].participantAddresses[0] = text;
        }
        for (const char* id : {"local-mac", "open-backup", "locked-backup"})
            provider->conversations[id] = rows;
        for (MessageSource& source : provider->sources)
            if (!source.isLocalMac()) {
                source.title = text;
                source.subtitle = text;
            }
    }

    void become() {
        settle();
        refresh();
    }
    void openSmall() {
        open();
        window->resize(window->minimumSize());
        refresh();
    }
    /// No text is read as anything but text, and each lies where it belongs.
    void expectOrder() {
        int seen = 0;
        std::string problems;
        for (const std::string& each : textsThatDoNotFit(*window->contentItem(), seen))
            problems += each.substr(0, 80) + " … " +
                        each.substr(each.size() - std::min<std::size_t>(each.size(), 40)) + "\n";
        EXPECT_EQ(problems, "");
        EXPECT_GT(seen, 2);
        for (const QQuickItem* each : itemsWith("textFormat"))
            if (each->inherits("QQuickText")) {
                EXPECT_EQ(each->property("textFormat").toInt(), static_cast<int>(Qt::PlainText))
                    << each->property("text").toString().left(40).toStdString();
            }
    }
    QQuickItem* button(const char* name) const {
        return find("QQuickAbstractButton", QString::fromUtf8(name));
    }
    void expectInWindow(const char* name) {
        const QQuickItem* item = button(name);
        ASSERT_NE(item, nullptr) << name;
        const QRectF place = item->mapRectToScene(item->boundingRect());
        EXPECT_TRUE(QRectF({}, window->size()).contains(place)) << name;
        for (const QQuickItem* each = item; each != nullptr; each = each->parentItem())
            EXPECT_TRUE(each->mapRectToScene(each->boundingRect()).adjusted(-1, -1, 1, 1).intersects(place))
                << name;
    }
};

TEST_P(HostileScreens, keepTheListInOrder) {
    startedModel();
    openSmall();
    expectOrder();
    double ordinary = 0;
    for (const QQuickItem* row : itemsWith("conversationID"))
        if (row->property("conversationID").toString() == QStringLiteral("4")) ordinary = row->height();
    for (const QQuickItem* row : itemsWith("conversationID"))
        EXPECT_LE(row->height(), 2 * ordinary + 1) << "a row of at most two lines of message";
    EXPECT_EQ(itemsWith("conversationID").size(), 5U) << "all five are in sight";
}

TEST_P(HostileScreens, keepTheDetailInOrder) {
    startedModel();
    model->setSelectedConversationID(SourceID{"2"});
    openSmall();
    expectOrder();
}

TEST_P(HostileScreens, keepTheSourceMenuInOrder) {
    startedModel();
    model->selectSource("open-backup");
    settle();
    openSmall();
    openSourceMenu(*this);
    EXPECT_EQ(findAll("QQuickMenuItem", QStringLiteral("This Mac")).size(), 1U) << "the menu is open";
    for (const QQuickItem* each : itemsWith("source"))
        if (each->inherits("QQuickMenuItem")) {
            EXPECT_TRUE(QRectF({}, window->size()).contains(each->mapRectToScene(each->boundingRect())));
        }
    expectOrder();
}

TEST_P(HostileScreens, keepTheSetupInOrder) {
    startedModel();
    model->setSelectedConversationID(SourceID{"2"});
    model->setDestination("/home/ada/" + GetParam().text.substr(0, 4'000));
    caches->onSearch = []() -> RecoveryReport { throw SpokenError(GetParam().text); };
    model->continueToExportSetup();
    settle();
    openSmall();
    expectOrder();
    expectInWindow("Back Up Now");
}

TEST_P(HostileScreens, keepTheProgressInOrder) {
    startedModel();
    model->setSelectedConversationID(SourceID{"2"});
    model->continueToExportSetup();
    settle();
    model->startExport();
    provider->prepared().back().exporter->answer = [](const ProgressCallback& report, std::stop_token) {
        report({ExportStage::copyingAttachments, 1, 3, GetParam().text});
        return ExportResult();
    };
    background->perform();
    mainThread->turnOnce();
    openSmall();
    expectOrder();
    expectInWindow("Cancel");
}

TEST_P(HostileScreens, keepTheCompletionInOrder) {
    startedModel();
    model->setSelectedConversationID(SourceID{"2"});
    model->continueToExportSetup();
    settle();
    ExportResult& result = provider->prepared().back().exporter->result;
    result.attachmentRecordCount = 3;
    result.warnings = {{.id = "1", .code = "new", .summary = GetParam().text, .sourceID = std::nullopt}};
    model->startExport();
    settle();
    openSmall();
    expectOrder();
    EXPECT_NE(button("Open Archive"), nullptr);
}

TEST_P(HostileScreens, keepThePasswordSheetInOrder) {
    startedModel();
    model->selectSource("locked-backup");
    openSmall();
    expectOrder();
    expectInWindow("Unlock");
    expectInWindow("Cancel");
}

TEST_P(HostileScreens, keepTheAlertInOrder) {
    startedModel();
    openSmall();
    provider->beforePrepared = [](const auto&, const auto&, std::stop_token) {
        throw SpokenError(GetParam().text);
    };
    model->selectSource("open-backup");
    become();
    EXPECT_TRUE(adapter->hasError());
    expectOrder();
    expectInWindow("OK");
}

TEST_P(HostileScreens, keepTheAlertInOrderWithLargeText) {
    startedModel();
    open({.hasReducedMotion = true, .textScale = 2});
    window->resize(window->minimumSize());
    provider->beforePrepared = [](const auto&, const auto&, std::stop_token) {
        throw SpokenError(GetParam().text);
    };
    model->selectSource("open-backup");
    become();
    expectInWindow("OK");
}

TEST_P(HostileScreens, keepTheAccessScreenInOrder) {
    checker->status = MessagesAccessStatus::failed(GetParam().text);
    startedModel();
    openSmall();
    expectOrder();
    EXPECT_NE(button("Check Again"), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Texts, HostileScreens, testing::ValuesIn(hostileTexts()),
                         [](const auto& test) { return std::string(test.param.name); });

class WarningLists : public ScreenStage {};

TEST_F(WarningLists, ofHundredThousandMakeTheLinesInSightAlone) {
    startedModel();
    model->setSelectedConversationID(SourceID{"1"});
    model->continueToExportSetup();
    settle();
    ExportResult& result = provider->prepared().back().exporter->result;
    for (int each = 0; each < 100'000; ++each)
        result.warnings.push_back({.id = "w",
                                   .code = "new",
                                   .summary = "Warning " + std::to_string(each),
                                   .sourceID = std::nullopt});
    model->startExport();
    settle();
    open();
    const auto lines = [this] {
        int count = 0;
        for (const QQuickItem* each : itemsWith("textFormat"))
            if (each->property("text").toString().startsWith(QStringLiteral("Warning "))) ++count;
        return count;
    };
    EXPECT_GT(lines(), 3);
    EXPECT_LT(lines(), 60);
    for (QQuickItem* list : itemsWith("contentY"))
        if (list->inherits("QQuickListView") && list->property("count").toInt() == 100'000)
            QMetaObject::invokeMethod(list, "positionViewAtEnd");
    refresh();
    EXPECT_LT(lines(), 60);
    EXPECT_GT(findAll("QQuickText", QStringLiteral("Warning 99999")).size(), 0U);
}

TEST_F(WarningLists, scrollByKeysWithoutMovement) {
    startedModel();
    model->setSelectedConversationID(SourceID{"1"});
    model->continueToExportSetup();
    settle();
    for (int each = 0; each < 100; ++each)
        provider->prepared().back().exporter->result.warnings.push_back(
            {.id = "w",
             .code = "new",
             .summary = "Warning " + std::to_string(each),
             .sourceID = std::nullopt});
    model->startExport();
    settle();
    open();
    QQuickItem* list = find("QQuickListView", QStringLiteral("100 items need attention"));
    ASSERT_NE(list, nullptr);
    list->forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_Down);
    const double there = list->property("contentY").toDouble();
    EXPECT_GT(there, 0);
    wait(200);
    EXPECT_EQ(list->property("contentY").toDouble(), there);
    press(Qt::Key_Up);
    press(Qt::Key_Up);
    EXPECT_EQ(list->property("contentY").toDouble(), 0);
}

} // namespace
} // namespace quillbook::test
