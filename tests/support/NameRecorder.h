#pragma once

#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include <sys/inotify.h>
#include <unistd.h>

namespace quillbook::test {

/// Notes every name that comes to stand in a folder, however soon it is gone again.
class NameRecorder {
public:
    explicit NameRecorder(const std::filesystem::path& folder)
        : descriptor_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
        ::inotify_add_watch(descriptor_, folder.c_str(), IN_CREATE | IN_MOVED_TO);
    }
    ~NameRecorder() { ::close(descriptor_); }
    NameRecorder(const NameRecorder&) = delete;
    NameRecorder& operator=(const NameRecorder&) = delete;

    std::vector<std::string> names() const {
        std::vector<std::string> all;
        alignas(inotify_event) std::array<char, 4'096> events{};
        for (ssize_t size = 0; (size = ::read(descriptor_, events.data(), events.size())) > 0;) {
            for (ssize_t at = 0; at < size;) {
                const auto* event = reinterpret_cast<const inotify_event*>(events.data() + at);
                all.emplace_back(event->name);
                at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
            }
        }
        return all;
    }

private:
    int descriptor_;
};

} // namespace quillbook::test
