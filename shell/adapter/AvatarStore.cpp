#include "shell/adapter/AvatarStore.h"

#include <QCryptographicHash>

namespace quillbook {
namespace {

std::string keyOf(const Data& picture) {
    const QByteArrayView bytes(picture.data(), static_cast<qsizetype>(picture.size()));
    return QCryptographicHash::hash(bytes, QCryptographicHash::Blake2b_160).toHex().toStdString();
}

} // namespace

std::string AvatarStore::keep(const Data& picture) {
    std::string key = keyOf(picture);
    const std::scoped_lock lock(mutex_);
    keepAs(key, picture);
    return key;
}

std::string AvatarStore::keepPictureOf(const ConversationSummary& conversation) {
    const Data& picture = *conversation.avatarData;
    const std::scoped_lock lock(mutex_);
    Known& known = known_[conversation.id.rawValue];
    if (known.key.empty() || known.place != picture.data() || known.size != picture.size())
        known = {picture.data(), picture.size(), keyOf(picture)};
    keepAs(known.key, picture);
    return known.key;
}

void AvatarStore::forgetList() {
    const std::scoped_lock lock(mutex_);
    known_.clear();
}

void AvatarStore::keepAs(const std::string& key, const Data& picture) {
    if (const auto found = places_.find(key); found != places_.end()) {
        kept_.splice(kept_.begin(), kept_, found->second);
        return;
    }
    kept_.push_front({key, std::make_shared<const Data>(picture)});
    places_[key] = kept_.begin();
    bytes_ += picture.size();
    while (bytes_ > limitBytes_ && kept_.size() > leastKept_) {
        bytes_ -= kept_.back().picture->size();
        places_.erase(kept_.back().key);
        kept_.pop_back();
    }
}

std::shared_ptr<const Data> AvatarStore::picture(const std::string& key) const {
    const std::scoped_lock lock(mutex_);
    const auto found = places_.find(key);
    return found == places_.end() ? nullptr : found->second->picture;
}

} // namespace quillbook
