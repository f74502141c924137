#pragma once

#include <functional>

namespace quillbook {

/// How the user wants every program to look.
struct Appearance {
    bool isDark = false;
    bool hasHighContrast = false;
    bool hasReducedMotion = false;
    double textScale = 1.0; ///< Beside the screen's own scale; 0.5 to 3.

    bool operator==(const Appearance&) const = default;
};

/// Main thread only. Never waits: until the desktop answered, the defaults stand.
class AppearanceFollowing {
public:
    virtual ~AppearanceFollowing() = default;
    virtual Appearance appearance() const = 0;
    /// Called after each change. Replaces the observer before it.
    virtual void observe(std::function<void()> observer) = 0;
};

} // namespace quillbook
