#include "shell/adapter/AlbumPictureProvider.h"
#include "tests/shell-adapter/Pictures.h"
#include "tests/support/TemporaryFolder.h"

#include <filesystem>
#include <string>
#include <vector>

#include <sys/stat.h>

namespace quillbook::test {
namespace {

namespace fs = std::filesystem;

const QString prefix = QStringLiteral("image://album/");

Decoded shown(const fs::path& file, QSize size = {64, 64}) {
    const QString key = albumPictureURL(file).toString().mid(prefix.size());
    return decodedBy(std::make_unique<AlbumPictureProvider>(), key, size);
}

class AlbumPictures : public testing::Test {
protected:
    Decoded shownAs(const std::string& name, const QByteArray& content, QSize size = {64, 64}) {
        return shown(folder.write(name, content.toStdString()), size);
    }
    void expectNone(const Decoded& result) {
        EXPECT_TRUE(result.image.isNull());
        EXPECT_EQ(result.error, QStringLiteral("This is no picture that can be shown."));
    }

    TemporaryFolder folder;
};

TEST_F(AlbumPictures, haveAddressesWithoutTheirWords) {
    const QString address = albumPictureURL("/a/1 #?.png").toString();
    EXPECT_EQ(address, prefix + QStringLiteral("2f612f3120233f2e706e67"));
}

TEST_F(AlbumPictures, areShownWholeAndNotAsACircle) {
    for (const char* format : {"PNG", "JPEG"}) {
        const QImage image = shownAs("halves", encoded(halves(), format)).image;
        ASSERT_EQ(image.size(), QSize(64, 64)) << format;
        EXPECT_TRUE(isReddish(image.pixelColor(0, 0))) << format;
        EXPECT_TRUE(isBluish(image.pixelColor(63, 63))) << format;
    }
}

TEST_F(AlbumPictures, coverTheSizeAskedFor) {
    EXPECT_EQ(shownAs("wide", encoded(halves(400, 100), "PNG")).image.size(), QSize(256, 64));
    EXPECT_EQ(shownAs("small", encoded(halves(10, 10), "PNG")).image.size(), QSize(10, 10));
    EXPECT_EQ(shownAs("large", encoded(halves(2'000, 2'000), "PNG"), {5'000, 5'000}).image.size(),
              QSize(1'024, 1'024));
}

TEST_F(AlbumPictures, areTurnedAsTheCameraMarkedThem) {
    const Data upsideDown = jpegWithOrientation(3);
    const QImage image = shownAs("turned.jpg", QByteArray(reinterpret_cast<const char*>(upsideDown.data()),
                                                          static_cast<qsizetype>(upsideDown.size())))
                             .image;
    ASSERT_EQ(image.size(), QSize(64, 64));
    EXPECT_TRUE(isBluish(image.pixelColor(12, 32)));
}

TEST_F(AlbumPictures, areToldByTheirBytesWhateverTheirNames) {
    EXPECT_FALSE(shownAs("picture.svg", encoded(halves(), "PNG")).image.isNull());
    EXPECT_FALSE(shownAs("no extension", encoded(halves(), "JPEG")).image.isNull());
    EXPECT_FALSE(shownAs("one.jpeg", whiteGIF()).image.isNull());
}

TEST_F(AlbumPictures, mayHaveNamesThatAreNoText) {
    EXPECT_FALSE(shownAs("\xFF\xFE\xC3.png", encoded(halves(), "PNG")).image.isNull());
}

TEST_F(AlbumPictures, areNoVectorsUnderAnotherName) {
    const fs::path pipe = folder / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const std::string drawing = "<svg xmlns='http://www.w3.org/2000/svg' "
                                "xmlns:xlink='http://www.w3.org/1999/xlink' width='9' height='9'>"
                                "<rect width='9' height='9' fill='red'/><image width='9' height='9' "
                                "xlink:href='file://" +
                                pipe.string() + "'/></svg>";
    expectNone(shownAs("drawing.jpeg", QByteArray::fromStdString(drawing)));
    expectNone(shownAs("drawing.svg", QByteArray::fromStdString(drawing)));
}

TEST_F(AlbumPictures, areOfNoOtherFormat) {
    for (const char* format : {"BMP", "PPM", "XPM"})
        expectNone(shownAs("picture.png", encoded(halves(), format)));
}

TEST_F(AlbumPictures, areNoPipeThatNobodyWrites) {
    const fs::path pipe = folder / "pipe.png";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    expectNone(shown(pipe));
}

TEST_F(AlbumPictures, areNoLinksFoldersOrThingsThatAreNotThere) {
    const fs::path picture = folder.write("picture.png", encoded(halves(), "PNG").toStdString());
    fs::create_symlink(picture, folder / "link.png");
    EXPECT_FALSE(shown(picture).image.isNull());
    expectNone(shown(folder / "link.png"));
    expectNone(shown(folder.path()));
    expectNone(shown(folder / "nothing.png"));
    expectNone(shown("/dev/zero"));
    expectNone(shown({}));
}

TEST_F(AlbumPictures, areNoFilesBeyondTheLimit) {
    const fs::path picture = folder.write("picture.png", encoded(halves(), "PNG").toStdString());
    fs::resize_file(picture, std::uintmax_t{64} << 20U);
    EXPECT_FALSE(shown(picture).image.isNull());
    fs::resize_file(picture, (std::uintmax_t{64} << 20U) + 1);
    expectNone(shown(picture));
}

TEST_F(AlbumPictures, areNothingWhereTheAddressIsNone) {
    for (const char* key : {"", "zz", "/etc/passwd", "../2f"})
        expectNone(decodedBy(std::make_unique<AlbumPictureProvider>(), QString::fromLatin1(key), {9, 9}));
}

} // namespace
} // namespace quillbook::test
