#include "tests/export/ExportFixture.h"

#include "export/ArchiveManifest.h"
#include "export/FileHash.h"

#include <algorithm>

namespace quillbook::test {

namespace fs = std::filesystem;

ExportFixture::ExportFixture(ArchiveConversation conversation)
    : destination(folder / "Albums"), loader(std::make_shared<FakeLoader>(std::move(conversation))) {
    fs::create_directory(destination);
    folder.write("Resources/Web/index.html", "<html lang=\"{{LANG}}\"><title>{{TITLE}}</title></html>");
    folder.write("Resources/Web/styles.css", "body { margin: 0; }");
    folder.write("Resources/Web/app.js", "\"use strict\";");
}

void ExportFixture::addFile(const std::string& storedPath, std::string_view contents) {
    loader->files[storedPath] = folder.write("Source/" + storedPath, contents);
}

ExportEnvironment ExportFixture::environment() const {
    return ExportEnvironment{
        .webArchive = {.resourceFolders = {folder / "Resources"}, .preferredLanguages = {"en"}},
        .durableFiles = durableFiles,
        .now = [] { return Date::fromUnixSeconds(1'714'566'896); },
        .dateText = &dateText,
        .clone = clone,
    };
}

ExportResult ExportFixture::run(std::stop_token stop) {
    ExportCoordinator coordinator(loader, environment());
    const auto progress = [this](const ExportProgress& report) {
        reports.push_back(report);
        onReport(report);
    };
    return coordinator.exportConversation(loader->conversation.id, destination, options, progress,
                                          std::move(stop));
}

std::vector<std::string> ExportFixture::destinationEntries() const {
    return entriesOf(destination);
}

std::vector<std::string> entriesOf(const fs::path& folder) {
    std::vector<std::string> names;
    if (!fs::exists(folder)) return names;
    for (const auto& entry : fs::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::string> visibleFiles(const fs::path& folder) {
    std::vector<std::string> paths;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        const std::string path = entry.path().lexically_relative(folder).string();
        const bool isHidden = path.starts_with('.') || path.find("/.") != std::string::npos;
        if (entry.is_regular_file() && !isHidden) paths.push_back(path);
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

std::string albumDefect(const fs::path& album) {
    if (!fs::exists(album / manifestFileName)) return "no manifest in " + album.string();
    const auto manifest = recordFromJSON<ArchiveManifest>(readFile(album / manifestFileName));
    std::vector<std::string> listed{manifestFileName};
    for (const ManifestFile& file : manifest.files) {
        listed.push_back(file.path);
        if (!fs::is_regular_file(album / file.path)) return "absent: " + file.path;
        if (static_cast<std::int64_t>(fs::file_size(album / file.path)) != file.byteSize)
            return "other size: " + file.path;
        if (hashFile(album / file.path, {}) != file.sha256) return "other contents: " + file.path;
    }
    std::sort(listed.begin(), listed.end());
    return listed == visibleFiles(album) ? "" : "the manifest lists other files than stand there";
}

} // namespace quillbook::test
