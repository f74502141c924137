#pragma once

namespace quillbook {

/// What the user chose for one export. The website, manifest.json, attachments and avatars are always
/// written.
struct ExportOptions {
    bool includeJSON = true;
    bool includeMarkdown = true;
    bool includeCSV = false;

    bool operator==(const ExportOptions&) const = default;
};

} // namespace quillbook
