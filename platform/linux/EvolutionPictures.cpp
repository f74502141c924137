#include "platform/linux/EvolutionPictures.h"

#include "platform/FileError.h"
#include "platform/FileReader.h"
#include "platform/linux/GLibPointers.h"

#include <algorithm>
#include <filesystem>

#include <libedataserver/libedataserver.h>

namespace quillbook {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t greatestPicture = 16 * fileBlockSize;

bool isBelow(const fs::path& file, const fs::path& folder) {
    return std::mismatch(folder.begin(), folder.end(), file.begin(), file.end()).first == folder.end();
}

/// Where the server keeps the files of address books.
bool isOfServer(const fs::path& file) {
    for (const char* folder : {e_get_user_data_dir(), e_get_user_cache_dir()}) {
        std::error_code failure;
        const fs::path books = fs::canonical(fs::path(folder) / "addressbook", failure);
        if (!failure && isBelow(file, books)) return true;
    }
    return false;
}

} // namespace

std::optional<Data> evolutionPicture(const std::string& uri) {
    const GLibText name(g_filename_from_uri(uri.c_str(), nullptr, nullptr));
    if (!name) return std::nullopt;
    std::error_code failure;
    const fs::path file = fs::canonical(name.get(), failure);
    if (failure || !isOfServer(file)) return std::nullopt;
    try {
        const std::string bytes = readWholeFile(file, greatestPicture);
        return Data(bytes.begin(), bytes.end());
    } catch (const FileError&) {
        return std::nullopt;
    }
}

} // namespace quillbook
