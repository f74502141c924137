#pragma once

#include "tests/screens/ScreenStates.h"

#include <QColor>
#include <QImage>
#include <QQmlProperty>
#include <QQuickItem>
#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace quillbook::test {

inline QString words(const char* utf8) {
    return QString::fromUtf8(utf8);
}

/// The window used by mouse and keys.
class Interaction : public ScreenStage {
protected:
    /// Opens the window on one of the states of the screens.
    void at(const std::string& name, const Appearance& wanted = {.hasReducedMotion = true}) {
        for (const ScreenState& state : screenStates()) {
            if (state.name != name) continue;
            state.prepare(*this);
            open(wanted);
            if (state.use) state.use(*this);
            return;
        }
        FAIL() << "no state " << name;
    }
    void become() {
        settle();
        refresh();
    }
    QQuickItem* button(const char* name) const { return find("QQuickAbstractButton", words(name)); }
    void pushed(const char* name) { click(button(name)); }
    bool shows(const char* text) const {
        const auto texts = itemsWith("textFormat");
        return std::any_of(texts.begin(), texts.end(), [&](const QQuickItem* each) {
            return each->property("text").toString() == words(text);
        });
    }
    std::string selected() const { return adapter->selectedConversationID().toStdString(); }
    std::size_t rows() const { return itemsWith("conversationID").size(); }
    bool isInSight(const std::string& id) const {
        const auto all = itemsWith("conversationID");
        return std::any_of(all.begin(), all.end(), [&](const QQuickItem* row) {
            const QRectF list = row->parentItem()->parentItem()->mapRectToScene(
                row->parentItem()->parentItem()->boundingRect());
            return row->property("conversationID").toString().toStdString() == id &&
                   list.contains(row->mapToScene({10, row->height() / 2}));
        });
    }
    /// Whether a ring that shows the keyboard's place is seen on the left of an item.
    bool ringIsDrawnRound(const QQuickItem& item) {
        for (const QQuickItem* ring : item.childItems()) {
            const bool isRing = QString::fromLatin1(ring->metaObject()->className()).startsWith(u"FocusRing");
            if (!isRing || !ring->isVisible()) continue;
            const QPointF edge = ring->mapToScene({1, ring->height() / 2});
            const QVariant border = QQmlProperty::read(ring, QStringLiteral("border.color"));
            return picture().pixelColor(edge.toPoint()) == border.value<QColor>();
        }
        return false;
    }
    void passSearchDelay() { mainThread->advance(std::chrono::milliseconds(220)); }
    /// With the keyboard in the list.
    void atListKeys() {
        at("list");
        press(Qt::Key_Down);
        ASSERT_EQ(focusedName(), words("Conversations"));
    }
    void fillWith(int count) {
        std::vector<ConversationSummary> all;
        for (int each = 1; each <= count; ++each)
            all.push_back(conversation(std::to_string(each), "Person " + std::to_string(each)));
        provider->conversations["local-mac"] = std::move(all);
    }
};

} // namespace quillbook::test
