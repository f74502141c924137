#pragma once

#include "shell/adapter/AvatarStore.h"

#include <QQuickAsyncImageProvider>
#include <QThreadPool>
#include <memory>

namespace quillbook {

/// Decodes "image://avatar/KEY" off the main thread, cut to a circle of the requested size. A picture that
/// is no PNG, JPEG, GIF or WebP, is damaged or measures over 16,384 pixels a side gives an error.
class AvatarProvider final : public QQuickAsyncImageProvider {
public:
    explicit AvatarProvider(std::shared_ptr<const AvatarStore> store);
    /// Waits for the decoding under way.
    ~AvatarProvider() override;

    QQuickImageResponse* requestImageResponse(const QString& key, const QSize& requestedSize) override;

private:
    const std::shared_ptr<const AvatarStore> store_;
    QThreadPool decoders_;
};

} // namespace quillbook
