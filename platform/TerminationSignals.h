#pragma once

namespace quillbook {

/// Turns the signals by which a session's end or a user at a terminal ends a process (SIGTERM, SIGINT,
/// SIGHUP) into something to wait for: what is decrypted must not lie about until the next start. Made before
/// any other thread, once a process; while it lives the signals do nothing by themselves. In the
/// processes that this one forks they act as ever.
class TerminationSignals {
public:
    TerminationSignals();
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

    /// Readable once such a signal came; -1 where the system gives none, and the signals act as ever.
    int descriptor() const { return descriptor_; }
    /// Takes the signal; from now on the next one ends the process by itself.
    void take();

private:
    int descriptor_ = -1;
};

} // namespace quillbook
