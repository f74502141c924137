#include "tests/screens/TextFit.h"

#include <QAccessible>
#include <QQuickItem>
#include <QRectF>

namespace quillbook::test {
namespace {

constexpr double tolerance = 1;

bool isShown(const QQuickItem& item) {
    return item.isVisible() && item.opacity() > 0 && item.width() > 0;
}

bool scrolls(const QQuickItem& item) {
    return item.inherits("QQuickFlickable");
}

/// What the text itself covers, in the coordinates of the window.
QRectF paintedRect(const QQuickItem& text) {
    const double width = text.property("contentWidth").toDouble();
    const double height = text.property("contentHeight").toDouble();
    const int align = text.property("effectiveHorizontalAlignment").toInt();
    double left = 0;
    if ((align & Qt::AlignHCenter) != 0) left = (text.width() - width) / 2;
    if ((align & Qt::AlignRight) != 0) left = text.width() - width;
    return text.mapRectToScene(QRectF(left, 0, width, height));
}

std::string named(const QQuickItem& text, const char* problem) {
    return "\"" + text.property("text").toString().toStdString() + "\" " + problem;
}

/// The first thing on the way up that the text sticks out of.
std::string problemOf(const QQuickItem& text) {
    if (text.property("truncated").toBool() && !text.property("mayShorten").toBool())
        return named(text, "is shortened");
    const QRectF painted = paintedRect(text);
    if (!text.property("truncated").toBool() && painted.width() > text.width() + tolerance)
        return named(text, "is wider than its place");
    bool isScrolled = false;
    for (const QQuickItem* each = text.parentItem(); each != nullptr; each = each->parentItem()) {
        const QRectF place = each->mapRectToScene(QRectF(0, 0, each->width(), each->height()));
        const bool holds = each->clip() || scrolls(*each) || each->inherits("QQuickAbstractButton") ||
                           each->parentItem() == nullptr;
        if (holds &&
            (painted.left() < place.left() - tolerance || painted.right() > place.right() + tolerance))
            return named(text, "sticks out at a side");
        isScrolled = isScrolled || scrolls(*each);
        if (holds && !isScrolled &&
            (painted.top() < place.top() - tolerance || painted.bottom() > place.bottom() + tolerance))
            return named(text, "sticks out above or below");
    }
    return {};
}

template <typename Visit>
void visitShown(const QQuickItem& item, const Visit& visit) {
    if (!isShown(item) && item.parentItem() != nullptr) return;
    visit(item);
    for (const QQuickItem* child : item.childItems())
        visitShown(*child, visit);
}

} // namespace

std::vector<std::string> textsThatDoNotFit(const QQuickItem& root, int& seen) {
    std::vector<std::string> problems;
    visitShown(root, [&](const QQuickItem& item) {
        if (!item.inherits("QQuickText") || item.property("text").toString().isEmpty()) return;
        ++seen;
        const std::string problem = problemOf(item);
        if (!problem.empty()) problems.push_back(problem);
    });
    return problems;
}

std::vector<std::string> textsThatOverlapInBars(const QQuickItem& root, int& bars) {
    std::vector<std::string> problems;
    visitShown(root, [&](const QQuickItem& bar) {
        if (!QString::fromLatin1(bar.metaObject()->className()).startsWith(u"BottomBar")) return;
        ++bars;
        std::vector<const QQuickItem*> texts;
        visitShown(bar, [&](const QQuickItem& item) {
            if (item.inherits("QQuickText") && !item.property("text").toString().isEmpty())
                texts.push_back(&item);
        });
        for (std::size_t each = 0; each < texts.size(); ++each)
            for (std::size_t other = each + 1; other < texts.size(); ++other)
                if (paintedRect(*texts[each]).intersects(paintedRect(*texts[other])))
                    problems.push_back(named(*texts[each], "lies over another text of its bar"));
    });
    return problems;
}

std::vector<std::string> controlsWithoutName(const QQuickItem& root) {
    std::vector<std::string> problems;
    visitShown(root, [&](const QQuickItem& item) {
        const bool isControl = item.inherits("QQuickAbstractButton") || item.inherits("QQuickTextField") ||
                               item.inherits("QQuickProgressBar") || item.activeFocusOnTab();
        if (!isControl) return;
        QAccessibleInterface* accessible =
            QAccessible::queryAccessibleInterface(const_cast<QQuickItem*>(&item));
        // Qt gives a field for a password no name; its description has to tell.
        const auto kind =
            item.property("echoMode").toInt() == 0 ? QAccessible::Name : QAccessible::Description;
        if (accessible == nullptr || accessible->text(kind).isEmpty())
            problems.push_back(item.metaObject()->className());
    });
    return problems;
}

} // namespace quillbook::test
