#include "shell/adapter/AppearanceAdapter.h"

#include <utility>

namespace quillbook {

AppearanceAdapter::AppearanceAdapter(std::shared_ptr<AppearanceFollowing> source, QObject* parent)
    : QObject(parent), source_(std::move(source)) {
    source_->observe([this] { Q_EMIT changed(); });
}

AppearanceAdapter::~AppearanceAdapter() {
    source_->observe({});
}

} // namespace quillbook
