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
    if (const auto found = places_.find(key); found != places_.end()) {
        kept_.splice(kept_.begin(), kept_, found->second);
        return key;
    }
    kept_.push_front({key, std::make_shared<const Data>(picture)});
    places_[key] = kept_.begin();
    bytes_ += picture.size();
    while (bytes_ > limitBytes_ && kept_.size() > 1) {
        bytes_ -= kept_.back().picture->size();
        places_.erase(kept_.back().key);
        kept_.pop_back();
    }
    return key;
}

std::shared_ptr<const Data> AvatarStore::picture(const std::string& key) const {
    const std::scoped_lock lock(mutex_);
    const auto found = places_.find(key);
    return found == places_.end() ? nullptr : found->second->picture;
}

} // namespace quillbook
