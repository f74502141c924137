#include "shell/desktop/linux/FileAddress.h"

#include <QByteArray>

namespace quillbook {
namespace {

const QByteArray scheme = "file://";
const QByteArray thisMachine = "localhost";

} // namespace

QString fileAddress(const std::filesystem::path& absoluteFile) {
    const auto bytes = QByteArray::fromStdString(absoluteFile.native());
    return QString::fromLatin1(scheme + bytes.toPercentEncoding("/"));
}

std::optional<std::filesystem::path> fileAtAddress(const QString& address) {
    QByteArray rest = address.toUtf8();
    if (rest.left(scheme.size()).toLower() != scheme) return std::nullopt;
    rest.remove(0, scheme.size());
    if (rest.startsWith(thisMachine)) rest.remove(0, thisMachine.size());
    const QByteArray name = QByteArray::fromPercentEncoding(rest);
    if (!name.startsWith('/') || name.contains('\0')) return std::nullopt;
    return std::filesystem::path(name.toStdString());
}

} // namespace quillbook
