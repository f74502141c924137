#include "shell/adapter/AlbumPictureProvider.h"

#include "core/records/DescribedError.h"
#include "platform/FileReader.h"

#include <QByteArray>

namespace quillbook {
namespace {

constexpr std::size_t largestFile = std::size_t{64} << 20U;

std::shared_ptr<const Data> contentOf(const std::filesystem::path& file) {
    try {
        FileReader reader(file, LastLink::refused);
        auto content = std::make_shared<Data>();
        for (auto block = reader.next(); !block.empty(); block = reader.next()) {
            if (block.size() > largestFile - content->size()) return nullptr;
            content->insert(content->end(), block.begin(), block.end());
        }
        return content;
    } catch (const DescribedError&) {
        return nullptr;
    }
}

} // namespace

QUrl albumPictureURL(const std::filesystem::path& file) {
    const QByteArray digits = QByteArray::fromStdString(file.string()).toHex();
    return QUrl(QStringLiteral("image://album/") + QString::fromLatin1(digits));
}

QQuickImageResponse* AlbumPictureProvider::requestImageResponse(const QString& key,
                                                                const QSize& requestedSize) {
    const std::filesystem::path file = QByteArray::fromHex(key.toLatin1()).toStdString();
    return decoder_.decode([file] { return contentOf(file); }, requestedSize);
}

} // namespace quillbook
