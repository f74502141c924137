#pragma once

#include <memory>

#include <gio/gio.h>

namespace quillbook {

struct GObjectReleaser {
    void operator()(void* object) const { g_object_unref(object); }
};
/// Owns one reference to an object of GObject.
template <typename Object>
using GObjectPointer = std::unique_ptr<Object, GObjectReleaser>;

struct GLibFree {
    void operator()(void* memory) const { g_free(memory); }
};
using GLibText = std::unique_ptr<char, GLibFree>;

/// Takes the error of a call that is given its `place()`. Serves one failing call.
class GLibError {
public:
    GLibError() = default;
    ~GLibError() { g_clear_error(&error_); }
    GLibError(const GLibError&) = delete;
    GLibError& operator=(const GLibError&) = delete;

    GError** place() { return &error_; }
    const char* message() const { return error_ == nullptr ? "" : error_->message; }

private:
    GError* error_ = nullptr;
};

} // namespace quillbook
