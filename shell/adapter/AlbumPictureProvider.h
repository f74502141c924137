#pragma once

#include "shell/adapter/PictureDecoder.h"

#include <QQuickAsyncImageProvider>
#include <QUrl>
#include <filesystem>

namespace quillbook {

/// The address of a file for the provider below. It holds the path byte by byte: names need not be text.
QUrl albumPictureURL(const std::filesystem::path& file);

/// Decodes "image://album/PATH", the path in hexadecimal digits. Attachments come from strangers: a symbolic
/// link, what is no regular file, and a file over 64 MiB give an error, as what is no picture does.
class AlbumPictureProvider final : public QQuickAsyncImageProvider {
public:
    QQuickImageResponse* requestImageResponse(const QString& key, const QSize& requestedSize) override;

private:
    PictureDecoder decoder_;
};

} // namespace quillbook
