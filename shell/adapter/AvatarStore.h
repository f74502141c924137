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
    /// More rows than a window shows.
    static constexpr std::size_t leastCount = 32;

    /// `leastKept` pictures are kept however large they are, so that those on show do not displace each
    /// other.
    explicit AvatarStore(std::size_t limitBytes = 32'000'000, std::size_t leastKept = leastCount)
        : limitBytes_(limitBytes), leastKept_(leastKept) {}

    /// Keeps a copy; the oldest give way to it where the limit is reached.
    std::string keep(const Data& picture);
    /// As above, of a conversation that has a picture. To make the key of a large one takes long: it is made
    /// once for as long as the list stands.
    std::string keepPictureOf(const ConversationSummary& conversation);
    /// The conversations that were given to `keepPictureOf` are gone.
    void forgetList();
    /// Null for a key that is unknown, or no longer kept.
    std::shared_ptr<const Data> picture(const std::string& key) const;

private:
    struct Kept {
        std::string key;
        std::shared_ptr<const Data> picture;
    };

    struct Known {
        const std::uint8_t* place;
        std::size_t size;
        std::string key;
    };

    void keepAs(const std::string& key, const Data& picture);

    const std::size_t limitBytes_;
    const std::size_t leastKept_;
    mutable std::mutex mutex_;
    std::list<Kept> kept_; ///< Latest first.
    std::unordered_map<std::string, std::list<Kept>::iterator> places_;
    std::size_t bytes_ = 0;
    std::unordered_map<std::string, Known> known_; ///< The keys of the list's pictures.
};

} // namespace quillbook
