#pragma once

namespace quillbook {

/// The application's icon among those of the desktop, and the place of its window. Main thread only; nothing
/// fails and nothing waits.
class ApplicationPresenting {
public:
    virtual ~ApplicationPresenting() = default;
    /// Puts the percentage, 1 to 100, on the application's icon.
    virtual void showBadge(int percentage) = 0;
    virtual void clearBadge() = 0;
    /// Asks for the user's attention once, without taking the focus.
    virtual void requestAttention() = 0;
    /// Whether the application has the user's focus.
    virtual bool isActive() const = 0;
    /// Brings the window to the front.
    virtual void activate() = 0;
};

} // namespace quillbook
