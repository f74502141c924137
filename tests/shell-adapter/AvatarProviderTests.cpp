#include "shell/adapter/AvatarProvider.h"
#include "tests/shell-adapter/Pictures.h"

#include <QThread>
#include <atomic>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

namespace quillbook::test {
namespace {

Decoded decode(const Data& picture, QSize size = {64, 64}) {
    const auto store = std::make_shared<AvatarStore>();
    const QString key = QString::fromStdString(store->keep(picture));
    return decodedBy(std::make_unique<AvatarProvider>(store), key, size);
}

class AvatarFormats : public testing::TestWithParam<const char*> {};

TEST_P(AvatarFormats, areDecodedToACircle) {
    const QImage image = decode(dataOf(encoded(halves(), GetParam()))).image;
    ASSERT_EQ(image.size(), QSize(64, 64));
    EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0);
    EXPECT_EQ(image.pixelColor(63, 63).alpha(), 0);
    EXPECT_TRUE(isReddish(image.pixelColor(16, 32)));
    EXPECT_TRUE(isBluish(image.pixelColor(48, 32)));
}

INSTANTIATE_TEST_SUITE_P(Table, AvatarFormats, testing::Values("PNG", "JPEG"),
                         [](const auto& test) { return std::string(test.param); });

TEST(AvatarProvider, decodesAGIF) {
    const QImage image = decode(dataOf(whiteGIF())).image;
    EXPECT_EQ(image.size(), QSize(1, 1));
}

TEST(AvatarProvider, tellsNoErrorOfAPicture) {
    EXPECT_EQ(decode(dataOf(encoded(halves(), "PNG"))).error, QString());
}

TEST(AvatarProvider, doesNotEnlarge) {
    EXPECT_EQ(decode(dataOf(encoded(halves(10, 10), "PNG"))).image.size(), QSize(10, 10));
}

TEST(AvatarProvider, takesAPictureOfOnePixel) {
    EXPECT_EQ(decode(dataOf(encoded(halves(1, 1), "PNG"))).image.size(), QSize(1, 1));
}

TEST(AvatarProvider, cutsTheMiddleOutOfAWidePicture) {
    const QImage image = decode(dataOf(encoded(halves(400, 100), "PNG"))).image;
    ASSERT_EQ(image.size(), QSize(64, 64));
    EXPECT_TRUE(isReddish(image.pixelColor(16, 32)));
    EXPECT_TRUE(isBluish(image.pixelColor(48, 32)));
}

TEST(AvatarProvider, cutsTheMiddleOutOfATallPicture) {
    EXPECT_EQ(decode(dataOf(encoded(halves(50, 900), "PNG"))).image.size(), QSize(50, 50));
}

TEST(AvatarProvider, takesAPictureThatIsALine) {
    EXPECT_EQ(decode(dataOf(encoded(halves(3'000, 1), "PNG"))).image.size(), QSize(1, 1));
}

TEST(AvatarProvider, choosesASizeWhereNoneIsAskedFor) {
    EXPECT_EQ(decode(dataOf(encoded(halves(), "PNG")), {}).image.size(), QSize(64, 64));
}

TEST(AvatarProvider, neverGivesMoreThanItsOwnLimit) {
    const QImage image = decode(dataOf(encoded(halves(2'000, 2'000), "PNG")), {1'000'000, 1'000'000}).image;
    EXPECT_EQ(image.size(), QSize(1'024, 1'024));
}

TEST(AvatarProvider, turnsAPictureAsTheCameraMarkedIt) {
    const QImage upright = decode(jpegWithOrientation(1)).image;
    ASSERT_EQ(upright.size(), QSize(64, 64));
    EXPECT_TRUE(isReddish(upright.pixelColor(12, 32)));
    const QImage upsideDown = decode(jpegWithOrientation(3)).image;
    ASSERT_EQ(upsideDown.size(), QSize(64, 64));
    EXPECT_TRUE(isBluish(upsideDown.pixelColor(12, 32)));
    EXPECT_TRUE(isReddish(upsideDown.pixelColor(52, 32)));
    const QImage clockwise = decode(jpegWithOrientation(6)).image;
    EXPECT_TRUE(isReddish(clockwise.pixelColor(32, 12)));
    EXPECT_TRUE(isBluish(clockwise.pixelColor(32, 52)));
}

struct RefusedCase {
    const char* name;
    Data picture;

    friend std::ostream& operator<<(std::ostream& out, const RefusedCase& each) { return out << each.name; }
};

std::vector<RefusedCase> refusedPictures() {
    const QByteArray png = encoded(halves(), "PNG");
    QByteArray hugeGIF = whiteGIF();
    hugeGIF.replace(6, 4, QByteArray::fromHex("ffffffff"));
    return {{"empty", {}},
            {"noPicture", {1, 2, 3}},
            {"text", {'h', 'e', 'l', 'l', 'o'}},
            {"vectors", dataOf("<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>")},
            {"pixmapText", dataOf("/* XPM */ static char*a[]={\"1 1 1 1\",\"a c red\",\"a\"};")},
            {"frontAlone", dataOf(png.left(8))},
            {"headerAlone", dataOf(png.left(33))},
            {"jpegFrontAlone", {0xFF, 0xD8, 0xFF, 0xE0, 0x00, 0x10}},
            {"noExtent", pngThatClaims(0, 0)},
            {"widerThanTheLimit", pngThatClaims(16'385, 10)},
            {"greatestExtent", pngThatClaims(0x7FFFFFFF, 0x7FFFFFFF)},
            {"negativeExtent", pngThatClaims(0xFFFFFFFF, 0xFFFFFFFF)},
            {"hugeGIF", dataOf(hugeGIF)}};
}

class RefusedPictures : public testing::TestWithParam<RefusedCase> {};

TEST_P(RefusedPictures, giveAnErrorAndNoPicture) {
    const Decoded result = decode(GetParam().picture);
    EXPECT_TRUE(result.image.isNull());
    EXPECT_EQ(result.error, QStringLiteral("This is no picture that can be shown."));
}

INSTANTIATE_TEST_SUITE_P(Table, RefusedPictures, testing::ValuesIn(refusedPictures()),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(AvatarProvider, survivesAPictureThatClaimsMoreThanThereIs) {
    const QImage image = decode(pngThatClaims(16'000, 16'000)).image;
    EXPECT_LE(image.width(), 64);
}

TEST(AvatarProvider, survivesEachCutOfAPicture) {
    for (const char* format : {"PNG", "JPEG"}) {
        const QByteArray whole = encoded(halves(40, 40), format);
        for (qsizetype length = 0; length < whole.size(); length += 7)
            EXPECT_LE(decode(dataOf(whole.left(length))).image.width(), 64);
    }
}

TEST(AvatarProvider, tellsOfAnUnknownKey) {
    auto provider = std::make_unique<AvatarProvider>(std::make_shared<AvatarStore>());
    const std::unique_ptr<QQuickImageResponse> response(
        provider->requestImageResponse(QStringLiteral("nothing"), {64, 64}));
    provider.reset();
    EXPECT_FALSE(response->errorString().isEmpty());
}

TEST(AvatarProvider, decodesOffTheMainThread) {
    const auto store = std::make_shared<AvatarStore>();
    auto provider = std::make_unique<AvatarProvider>(store);
    const QString key = QString::fromStdString(store->keep(dataOf(encoded(halves(600, 600), "PNG"))));
    std::atomic<int> elsewhere = 0;
    std::atomic<int> here = 0;
    std::vector<std::unique_ptr<QQuickImageResponse>> responses;
    for (int each = 0; each < 60; ++each) {
        responses.emplace_back(provider->requestImageResponse(key, {64, 64}));
        QObject::connect(
            responses.back().get(), &QQuickImageResponse::finished, responses.back().get(),
            [&elsewhere, &here, main = QThread::currentThread()] {
                ++(QThread::currentThread() == main ? here : elsewhere);
            },
            Qt::DirectConnection);
    }
    provider.reset();
    EXPECT_EQ(here, 0);
    EXPECT_GT(elsewhere, 0);
}

TEST(AvatarProvider, endsWhilePicturesAreDecoded) {
    const auto store = std::make_shared<AvatarStore>();
    auto provider = std::make_unique<AvatarProvider>(store);
    const QString key = QString::fromStdString(store->keep(dataOf(encoded(halves(1'500, 1'500), "JPEG"))));
    std::vector<std::unique_ptr<QQuickImageResponse>> responses;
    for (int each = 0; each < 8; ++each)
        responses.emplace_back(provider->requestImageResponse(key, {64, 64}));
    provider.reset();
    for (const auto& each : responses)
        EXPECT_EQ(each->errorString(), QString()) << "all were decoded to their end";
}

} // namespace
} // namespace quillbook::test
