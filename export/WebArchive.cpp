#include "export/WebArchive.h"

#include "core/records/RecordsJSON.h"
#include "core/text/GraphemeClusters.h"
#include "core/text/UTF8.h"
#include "core/text/UnicodeCategories.h"
#include "core/text/UserLocale.h"
#include "export/ArchiveLanguage.h"
#include "export/ScriptEscaper.h"
#include "export/WebResource.h"
#include "platform/AtomicFile.h"
#include "platform/FolderCreation.h"
#include "platform/ResourceFolders.h"

#include <algorithm>

namespace quillbook {
namespace {

// The text of a message can be any size; its escaped form is made in slices, so that there is never a second
// copy of it.
constexpr std::size_t sliceSize = 0x10000;
// File systems take names of up to 255 bytes; one odd contact must not end an album.
constexpr std::size_t longestBaseName = 240;

std::string_view avatarExtension(const std::optional<std::string>& mimeType) {
    if (mimeType == "image/png") return "png";
    if (mimeType == "image/heic") return "heic";
    if (mimeType == "image/gif") return "gif";
    return "jpg";
}

std::string avatarBaseName(const ArchiveParticipant& participant, std::size_t index) {
    std::string name;
    for (std::string_view rest = participant.id; !rest.empty();) {
        const char32_t scalar = takeScalar(rest);
        appendScalar(name, isAlphanumeric(scalar) ? scalar : U'-');
    }
    if (name.empty()) return "participant-" + std::to_string(index);
    return std::string(graphemePrefix(name, longestBaseName));
}

void writeAvatar(ArchiveParticipant& participant, std::size_t index, const std::filesystem::path& root) {
    std::string path = "assets/avatars/" + avatarBaseName(participant, index);
    (path += '.') += avatarExtension(participant.avatarMimeType);
    const Data& picture = *participant.avatarData;
    writeFileAtomically(root / path, {reinterpret_cast<const char*>(picture.data()), picture.size()});
    participant.avatarPath = std::move(path);
    participant.avatarData.reset();
}

std::string escapedHTML(std::string_view text) {
    std::string html;
    for (const char character : text) {
        switch (character) {
        case '&':
            html += "&amp;";
            break;
        case '<':
            html += "&lt;";
            break;
        case '>':
            html += "&gt;";
            break;
        case '"':
            html += "&quot;";
            break;
        default:
            html += character;
        }
    }
    return html;
}

std::string replacingAll(std::string_view text, std::string_view token, std::string_view value) {
    std::string result;
    for (auto found = text.find(token); found != std::string_view::npos; found = text.find(token)) {
        (result += text.substr(0, found)) += value;
        text.remove_prefix(found + token.size());
    }
    return result += text;
}

std::string page(const ArchiveConversation& conversation, const WebArchiveSettings& settings) {
    const std::string form = loadWebResource("index", "html", settings.resourceFolders);
    const std::string titled = replacingAll(form, "{{TITLE}}", escapedHTML(conversation.title));
    return replacingAll(titled, "{{LANG}}", escapedHTML(pickArchiveLanguage(settings.preferredLanguages)));
}

/// The conversation in a script, since a page opened from a disk may load scripts but no JSON.
void writeDataFile(const ArchiveConversation& conversation, const std::filesystem::path& path) {
    AtomicFile file(path);
    ScriptEscaper escaper;
    std::string script = "window.QUILLBOOK_DATA = ";
    JSONWriter json([&](std::string_view piece) {
        for (; !piece.empty(); piece.remove_prefix(std::min(piece.size(), sliceSize))) {
            escaper.append(script, piece.substr(0, sliceSize));
            file.write(script);
            script.clear();
        }
    });
    writeJSON(json, conversation);
    json.finish();
    escaper.finish(script);
    file.write(script += ";\n");
    file.commit();
}

} // namespace

WebArchiveSettings WebArchiveSettings::user() {
    return {quillbook::resourceFolders(), quillbook::preferredLanguages()};
}

void writeAvatarAssets(ArchiveConversation& conversation, const std::filesystem::path& root) {
    auto& participants = conversation.participants;
    const auto hasPicture = [](const ArchiveParticipant& participant) {
        return participant.avatarData.has_value();
    };
    if (std::none_of(participants.begin(), participants.end(), hasPicture)) return;
    createFolders(root / "assets" / "avatars");
    for (std::size_t index = 0; index < participants.size(); ++index) {
        if (hasPicture(participants[index])) writeAvatar(participants[index], index, root);
    }
}

void writeWebArchive(const ArchiveConversation& conversation, const std::filesystem::path& root,
                     const WebArchiveSettings& settings) {
    const std::filesystem::path assets = root / "assets";
    createFolders(assets);
    createFolders(root / "data");
    writeFileAtomically(root / "index.html", page(conversation, settings));
    writeFileAtomically(assets / "styles.css", loadWebResource("styles", "css", settings.resourceFolders));
    writeFileAtomically(assets / "app.js", loadWebResource("app", "js", settings.resourceFolders));
    writeDataFile(conversation, root / "data" / "messages.js");
}

} // namespace quillbook
