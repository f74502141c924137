#pragma once

#include "core/interfaces/MainThread.h"

#include <QObject>

namespace quillbook {

/// The thread of Qt's event loop as the model knows it. Made there; work that still waits when it is gone is
/// dropped.
class QtMainThread final : public QObject, public MainThread {
    Q_OBJECT
public:
    QtMainThread() = default;

    void post(std::function<void()> work) override;
    void postAfter(std::chrono::nanoseconds delay, std::stop_token stop, std::function<void()> work) override;
};

} // namespace quillbook
