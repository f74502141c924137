#pragma once

#include "core/records/ConversationSummary.h"

#include <QImage>
#include <QQuickAsyncImageProvider>
#include <QSize>
#include <QThreadPool>
#include <functional>
#include <memory>

namespace quillbook {

/// Decodes the pictures of strangers in threads of its own. Their first bytes alone tell what they are: PNG,
/// JPEG, GIF or WebP. Anything else, what is damaged and what measures over 16,384 pixels a side gives an
/// error, and no other code than the four decoders sees it.
class PictureDecoder {
public:
    /// The bytes of a picture; null where there is none.
    using Reading = std::function<std::shared_ptr<const Data>()>;
    using Shaping = std::function<QImage(const QImage&)>;

    PictureDecoder();
    /// Waits for the decoding under way.
    ~PictureDecoder();

    /// The whole picture, upright, in the least size that covers a square of the longer side requested, at
    /// most 1,024, never enlarged. `read` and `shape`, which gets it, are called in a decoding thread.
    QQuickImageResponse* decode(Reading read, const QSize& requestedSize, Shaping shape = {});

private:
    QThreadPool threads_;
};

} // namespace quillbook
