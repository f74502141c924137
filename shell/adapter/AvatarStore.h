#pragma once

#include "core/records/ConversationSummary.h"

#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

namespace quillbook {

/// The undecoded pictures of the rows seen last, under keys made of their bytes. Safe to call from any
/// thread.
class AvatarStore {
public:
    explicit AvatarStore(std::size_t limitBytes = 32'000'000) : limitBytes_(limitBytes) {}

    /// Keeps a copy; the oldest give way to it where the limit is reached.
    std::string keep(const Data& picture);
    /// Null for a key that is unknown, or no longer kept.
    std::shared_ptr<const Data> picture(const std::string& key) const;

private:
    struct Kept {
        std::string key;
        std::shared_ptr<const Data> picture;
    };

    const std::size_t limitBytes_;
    mutable std::mutex mutex_;
    std::list<Kept> kept_; ///< Latest first.
    std::unordered_map<std::string, std::list<Kept>::iterator> places_;
    std::size_t bytes_ = 0;
};

} // namespace quillbook
