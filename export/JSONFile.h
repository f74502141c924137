#pragma once

#include "core/records/RecordsJSON.h"
#include "platform/AtomicFile.h"

#include <filesystem>
#include <string_view>

namespace quillbook {

/// Writes one record as an album's JSON file, whole or not at all. It goes to the disk as a stream, so memory
/// stays flat. `Record` needs a `writeJSON`. Throws FileError.
template <typename Record>
void writeJSONFile(const std::filesystem::path& path, const Record& record) {
    AtomicFile file(path);
    JSONWriter json([&](std::string_view piece) { file.write(piece); });
    writeJSON(json, record);
    json.finish();
    file.commit();
}

} // namespace quillbook
