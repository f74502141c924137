#pragma once

#include "shell/adapter/AvatarStore.h"
#include "shell/adapter/PictureDecoder.h"

#include <QQuickAsyncImageProvider>
#include <memory>

namespace quillbook {

/// Decodes "image://avatar/KEY", cut to a circle of the requested size; its end waits for the decoding under
/// way.
class AvatarProvider final : public QQuickAsyncImageProvider {
public:
    explicit AvatarProvider(std::shared_ptr<const AvatarStore> store);

    QQuickImageResponse* requestImageResponse(const QString& key, const QSize& requestedSize) override;

private:
    const std::shared_ptr<const AvatarStore> store_;
    PictureDecoder decoder_;
};

} // namespace quillbook
