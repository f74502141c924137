#include "shell/adapter/GlyphProvider.h"

#include <QDir>
#include <QImage>
#include <atomic>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillbook {
namespace {

QStringList warnings;

void keepWarning(QtMsgType type, const QMessageLogContext&, const QString& text) {
    if (type == QtWarningMsg) warnings += text;
}

QStringList allSymbols() {
    QStringList symbols;
    for (const QString& file : QDir(":/quillbook/glyphs").entryList({"*.svg"}, QDir::Files))
        symbols += file.chopped(4);
    return symbols;
}

struct GlyphProviderTests : testing::Test {
    void SetUp() override {
        warnings.clear();
        before = qInstallMessageHandler(keepWarning);
    }
    void TearDown() override { qInstallMessageHandler(before); }

    GlyphProvider provider;
    QSize size;
    QtMessageHandler before = nullptr;
};

int strongestAlpha(const QImage& image) {
    int alpha = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            alpha = std::max(alpha, qAlpha(image.pixel(x, y)));
    return alpha;
}

bool touchesEdge(const QImage& image) {
    for (int i = 0; i < image.width(); ++i)
        for (const QPoint& point :
             {QPoint(i, 0), QPoint(i, image.height() - 1), QPoint(0, i), QPoint(image.width() - 1, i)})
            if (qAlpha(image.pixel(point)) > 0) return true;
    return false;
}

TEST_F(GlyphProviderTests, everySymbolIsDrawnInsideItsGridWithoutAWarning) {
    const QStringList symbols = allSymbols();
    ASSERT_GE(symbols.size(), 41);
    for (const QString& symbol : symbols) {
        const QImage image = provider.requestImage(symbol + "/ff3457a6", &size, {96, 96});
        EXPECT_EQ(strongestAlpha(image), 255) << qPrintable(symbol);
        EXPECT_FALSE(touchesEdge(image)) << qPrintable(symbol);
    }
    EXPECT_EQ(warnings, QStringList());
}

int pixelsOfAnotherColor(const QImage& image, QRgb opaque) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (qAlpha(image.pixel(x, y)) == 255 && image.pixel(x, y) != opaque) ++count;
    return count;
}

TEST_F(GlyphProviderTests, everyOpaquePixelHasTheColorAskedFor) {
    for (const QString& symbol : allSymbols()) {
        const QImage image = provider.requestImage(symbol + "/ff3457a6", &size, {64, 64});
        EXPECT_EQ(pixelsOfAnotherColor(image, 0xff3457a6u), 0) << qPrintable(symbol);
    }
}

TEST_F(GlyphProviderTests, aTranslucentColorIsEvenWhereStrokesCross) {
    EXPECT_EQ(strongestAlpha(provider.requestImage("xmark/80ffffff", &size, {64, 64})), 0x80);
}

TEST_F(GlyphProviderTests, sixDigitsAreAnOpaqueColor) {
    EXPECT_EQ(provider.requestImage("checkmark/3457a6", &size, {48, 48}),
              provider.requestImage("checkmark/ff3457a6", &size, {48, 48}));
    EXPECT_EQ(warnings, QStringList());
}

TEST_F(GlyphProviderTests, theImageHasTheDevicePixelsAskedFor) {
    const QImage image = provider.requestImage("checkmark/ff000000", &size, {40, 40});
    EXPECT_EQ(image.size(), QSize(40, 40));
    EXPECT_EQ(size, QSize(40, 40));
    EXPECT_EQ(image.format(), QImage::Format_ARGB32_Premultiplied);
}

TEST_F(GlyphProviderTests, withoutASizeTheImageHasTheGridsOwn) {
    EXPECT_EQ(provider.requestImage("checkmark/ff000000", nullptr, {}).size(), QSize(24, 24));
}

TEST_F(GlyphProviderTests, oneSideAloneGivesASquare) {
    EXPECT_EQ(provider.requestImage("checkmark/ff000000", &size, {0, 30}).size(), QSize(30, 30));
}

TEST_F(GlyphProviderTests, aWideImageHoldsTheGlyphUndistorted) {
    const QImage image = provider.requestImage("plus.circle.fill/ff000000", &size, {96, 48});
    EXPECT_EQ(qAlpha(image.pixel(20, 24)), 0);
    EXPECT_EQ(qAlpha(image.pixel(36, 24)), 255);
}

struct UnknownGlyph : GlyphProviderTests, testing::WithParamInterface<const char*> {};

TEST_P(UnknownGlyph, isANullImageAndOneWarning) {
    EXPECT_TRUE(provider.requestImage(GetParam(), &size, {16, 16}).isNull());
    EXPECT_EQ(warnings.size(), 1);
}

INSTANTIATE_TEST_SUITE_P(Table, UnknownGlyph,
                         testing::Values("no.such.symbol/ff000000", "checkmark", "checkmark/",
                                         "checkmark/red", "checkmark/ff00000g", "checkmark/000", "/ff000000",
                                         "", "../glyphs/checkmark/ff000000"));

TEST_F(GlyphProviderTests, threadsDrawTheSameImageAtOnce) {
    const QImage expected = provider.requestImage("hand.raised/ff204080", &size, {48, 48});
    std::atomic<int> same = 0;
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([&] {
                for (int round = 0; round < 50; ++round) {
                    QSize own;
                    if (provider.requestImage("hand.raised/ff204080", &own, {48, 48}) == expected) ++same;
                }
            });
    }
    EXPECT_EQ(same, 200);
}

} // namespace
} // namespace quillbook
