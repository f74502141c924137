#pragma once

#include "core/records/ArchiveConversation.h"
#include "export/ArchiveManifest.h"

#include <filesystem>
#include <string>
#include <vector>

namespace quillbook {

/// Throws FileError for the first file that the album's records name or that `written` lists, but that is not
/// among `files`, which are sorted by path: something took it away while the album was made, and an album
/// must not promise what it does not hold.
void requireEveryFile(const ArchiveConversation& conversation, const std::vector<std::string>& written,
                      const std::vector<ManifestFile>& files, const std::filesystem::path& root);

} // namespace quillbook
