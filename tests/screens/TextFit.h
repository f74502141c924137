#pragma once

#include <string>
#include <vector>

class QQuickItem;

namespace quillbook::test {

/// Every visible text below `root` that is cut off, shortened without leave, or sticks out of what holds it:
/// the window, a button, a box that clips, as lines of words. `seen` takes how many texts there were.
std::vector<std::string> textsThatDoNotFit(const QQuickItem& root, int& seen);

/// Every pair of visible texts that cover each other in a bar of buttons below `root`. `bars` takes how many
/// bars there were.
std::vector<std::string> textsThatOverlapInBars(const QQuickItem& root, int& bars);

/// Every visible control below `root` without an accessible name.
std::vector<std::string> controlsWithoutName(const QQuickItem& root);

} // namespace quillbook::test
