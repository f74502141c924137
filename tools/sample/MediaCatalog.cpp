#include "tools/sample/MediaCatalog.h"

#include "tools/sample/ImageEncoders.h"
#include "tools/sample/MediaDocuments.h"
#include "tools/sample/MediaMovies.h"
#include "tools/sample/MediaPictures.h"
#include "tools/writing/DeterministicRandom.h"

#include <array>
#include <map>

#include <fmt/format.h>

namespace quillbook::sample {
namespace {

struct MediaKind {
    std::string_view mimeType;
    std::string_view uniformType;
};

constexpr MediaKind jpeg = {"image/jpeg", "public.jpeg"};
constexpr MediaKind png = {"image/png", "public.png"};
constexpr MediaKind plainText = {"text/plain", "public.plain-text"};

MediaFile fileOf(std::string name, MediaKind kind, Data contents) {
    MediaFile file;
    file.transferName = name;
    file.fileName = std::move(name);
    file.mimeType = kind.mimeType;
    file.uniformType = kind.uniformType;
    file.byteCount = static_cast<std::int64_t>(contents.size());
    file.contents = std::move(contents);
    return file;
}

/// Nothing of it is on the disk; the record says how long it was.
MediaFile absentFile(std::string name, MediaKind kind, std::int64_t byteCount, MediaPresence presence) {
    MediaFile file = fileOf(std::move(name), kind, {});
    file.byteCount = byteCount;
    file.presence = presence;
    return file;
}

/// A name that asks for trouble: it climbs out, has separators of several systems, a colon, an emoji,
/// right-to-left letters, and is longer than most file systems take.
std::string awkwardName() {
    std::string name =
        "../../way to the lake/by car\\on foot: part 1 🚗🥾 الطريق إلى البحيرة * ? "
        "\"final\" "
        "<2> | ";
    for (int turn = 1; turn <= 24; ++turn)
        name += fmt::format("left then right ({}) ", turn);
    return name + ".txt";
}

MediaFile awkwardFile() {
    MediaFile file = fileOf("way to the lake.txt", plainText, routeText());
    file.transferName = awkwardName();
    return file;
}

MediaFile emptyOnDisk() {
    return absentFile("IMG_2291.jpeg", jpeg, 1'204'551, MediaPresence::zeroBytes);
}

using Maker = MediaFile (*)();

const std::map<std::string_view, Maker>& makers() {
    static const std::map<std::string_view, Maker> table = {
        {"bookingPDF",
         [] {
             return fileOf("Booking LH-2024-0720.pdf", {"application/pdf", "com.adobe.pdf"}, bookingPDF());
         }},
        {"costsCSV",
         [] {
             return fileOf("Lake house costs.csv", {"text/csv", "public.comma-separated-values-text"},
                           costsCSV());
         }},
        {"packingList", [] { return fileOf("Packing list.txt", plainText, packingListText()); }},
        {"notesText", [] { return fileOf("Notes October 13.txt", plainText, bookClubNotesText()); }},
        {"landladyCard",
         [] {
             return fileOf("Edda Seeberg.vcf", {"text/vcard", "public.vcard"}, landladyCard());
         }},
        {"canoeMovie",
         [] {
             return fileOf("IMG_1874.mp4", {"video/mp4", "public.mpeg-4"}, canoeMovie());
         }},
        {"voiceNote",
         [] {
             return fileOf("Audio Message.m4a", {"audio/mp4", "com.apple.m4a-audio"}, voiceNote());
         }},
        {"bounceGIF",
         [] {
             return fileOf("jump.gif", {"image/gif", "com.compuserve.gif"}, bounceAnimation());
         }},
        {"awkward", awkwardFile},
        {"zeroByte", emptyOnDisk},
        {"missingPhoto", [] { return absentFile("IMG_2276.jpeg", jpeg, 3'482'110, MediaPresence::missing); }},
        {"thumbMissing",
         [] {
             return absentFile("IMG_2304.MOV", {"video/quicktime", "com.apple.quicktime-movie"}, 48'220'417,
                               MediaPresence::missing);
         }},
        {"noPath", [] { return absentFile("postcard-back.jpeg", jpeg, 0, MediaPresence::withoutPath); }}};
    return table;
}

/// "IMG_1234.jpeg": cameras count, so that names look alike. Both covers go by one name.
std::string pictureName(std::string_view name, DeterministicRandom& random) {
    if (name == "map") return "Map with route.png";
    if (name == "coverOne" || name == "coverTwo") return "cover.jpeg";
    return fmt::format("IMG_{:04}.jpeg", 1000 + random.below(9000));
}

std::optional<MediaFile> picture(std::string_view name, std::uint64_t seed) {
    const Painter painter = painterNamed(name);
    if (painter == nullptr) return std::nullopt;
    DeterministicRandom random(seed, name);
    PictureCanvas canvas(1200, 900);
    painter(canvas, random);
    std::string fileName = pictureName(name, random);
    if (name == "map") return fileOf(std::move(fileName), png, encodePNG(canvas));
    return fileOf(std::move(fileName), jpeg, encodeJPEG(canvas));
}

/// Circles on a gradient, in colours that the number gives.
PictureCanvas smallPicture(DeterministicRandom& random) {
    PictureCanvas canvas(160, 120);
    const auto anyColour = [&] { return colour(static_cast<unsigned>(random.below(0x1000000))); };
    const Colour top = anyColour();
    canvas.verticalGradient(0, 900, {{0, top}, {1, anyColour()}});
    for (int index = 0; index < 3; ++index) {
        const double x = random.fraction(100, 1100);
        const double y = random.fraction(100, 800);
        const double radius = random.fraction(60, 260);
        canvas.circle({x, y}, radius, mixed(anyColour(), top, 0.3));
    }
    return canvas;
}

} // namespace

std::optional<MediaFile> namedMedia(std::string_view name, std::uint64_t seed) {
    const auto maker = makers().find(name);
    if (maker != makers().end()) return maker->second();
    return picture(name, seed);
}

MediaFile smallMedia(std::int64_t number, std::uint64_t seed) {
    DeterministicRandom random(seed, fmt::format("small file {}", number));
    if (number % 6 == 0) {
        const std::string text = fmt::format(
            "Note {}\n\nSee you at {} o'clock by the water, bring a towel.\n", number, 1 + random.below(12));
        return fileOf(fmt::format("Note {}.txt", number), plainText, Data(text.begin(), text.end()));
    }
    const PictureCanvas canvas = smallPicture(random);
    if (number % 3 == 0) return fileOf(fmt::format("Screenshot {}.png", number), png, encodePNG(canvas));
    return fileOf(fmt::format("IMG_{:04}.jpeg", number), jpeg, encodeJPEG(canvas));
}

MediaFile absentMedia(std::int64_t number) {
    return absentFile(fmt::format("IMG_{:04}.jpeg", number), jpeg, 100'000 + number % 1'000 * 37,
                      MediaPresence::missing);
}

} // namespace quillbook::sample
