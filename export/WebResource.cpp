#include "export/WebResource.h"

#include "core/text/Localization.h"
#include "core/text/UTF8.h"
#include "platform/FileError.h"
#include "platform/FileReader.h"

namespace quillbook {
namespace {

std::string readText(const std::filesystem::path& file) {
    std::string text = readWholeFile(file);
    if (isValidUTF8(text)) return text;
    throw FileError(FileError::Action::read, file, std::make_error_code(std::errc::illegal_byte_sequence));
}

} // namespace

std::string WebArchiveError::description() const {
    return localized("The bundled web archive resource is missing.");
}

std::string loadWebResource(std::string_view name, std::string_view extension,
                            const std::vector<std::filesystem::path>& folders) {
    const std::string fileName = std::string(name) + '.' + std::string(extension);
    for (const std::filesystem::path& folder : folders) {
        for (const auto& file : {folder / "Web" / fileName, folder / fileName}) {
            std::error_code isAbsent;
            if (std::filesystem::is_regular_file(file, isAbsent)) return readText(file);
        }
    }
    throw WebArchiveError(fileName);
}

} // namespace quillbook
