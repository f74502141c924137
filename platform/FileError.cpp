#include "platform/FileError.h"

#include "core/text/Localization.h"
#include "core/text/UTF8.h"

#include <cerrno>
#include <utility>

namespace quillbook {
namespace {

std::string sentence(FileError::Action action) {
    switch (action) {
    case FileError::Action::open:
        return "“{}” could not be opened: {}.";
    case FileError::Action::create:
        return "“{}” could not be created: {}.";
    case FileError::Action::read:
        return "“{}” could not be read: {}.";
    case FileError::Action::write:
        return "“{}” could not be written: {}.";
    case FileError::Action::rename:
        return "“{}” could not be moved into place: {}.";
    case FileError::Action::list:
        return "The folder “{}” could not be read: {}.";
    case FileError::Action::remove:
        return "“{}” could not be removed: {}.";
    case FileError::Action::createFolder:
        return "The folder “{}” could not be created: {}.";
    }
    return "“{}”: {}.";
}

} // namespace

FileError::FileError(Action failedAction, std::filesystem::path failedFile, std::error_code reason)
    : action(failedAction), file(std::move(failedFile)), code(reason) {}

FileError FileError::fromErrno(Action action, std::filesystem::path file) {
    const int reason = errno;
    return {action, std::move(file), std::error_code(reason, std::generic_category())};
}

std::string FileError::description() const {
    const auto name = file.has_filename() ? file.filename() : file;
    return localizedFormat(sentence(action), repairedUTF8(name.string()), code.message());
}

} // namespace quillbook
