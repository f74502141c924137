#include "tests/sample/LibraryUnderTest.h"
#include "tools/sample/MediaDocuments.h"

#include <charconv>
#include <cstdio>

#include <gmock/gmock.h>
#include <jpeglib.h>
#include <png.h>

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wold-style-cast"
extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}
#pragma GCC diagnostic pop

namespace quillbook::sample {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

struct Size {
    unsigned width = 0;
    unsigned height = 0;
    bool operator==(const Size&) const = default;
};

/// Decodes every line; warnings of the decoder count as failures.
Size decodeJPEG(const std::string& file) {
    jpeg_error_mgr errors{};
    jpeg_decompress_struct codec{};
    codec.err = jpeg_std_error(&errors);
    errors.error_exit = [](j_common_ptr) { throw std::runtime_error("not a JPEG"); };
    jpeg_create_decompress(&codec);
    jpeg_mem_src(&codec, reinterpret_cast<const unsigned char*>(file.data()), file.size());
    jpeg_read_header(&codec, TRUE);
    jpeg_start_decompress(&codec);
    std::vector<unsigned char> row(std::size_t{codec.output_width} * 3);
    JSAMPROW pointer = row.data();
    while (codec.output_scanline < codec.output_height)
        jpeg_read_scanlines(&codec, &pointer, 1);
    const Size size{codec.output_width, codec.output_height};
    EXPECT_EQ(errors.num_warnings, 0);
    jpeg_finish_decompress(&codec);
    jpeg_destroy_decompress(&codec);
    return size;
}

Size decodePNG(const std::string& file) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_memory(&image, file.data(), file.size()) == 0)
        throw std::runtime_error(image.message);
    image.format = PNG_FORMAT_RGB;
    std::vector<unsigned char> pixels(PNG_IMAGE_SIZE(image));
    if (png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr) == 0)
        throw std::runtime_error(image.message);
    return {image.width, image.height};
}

struct StreamFacts {
    AVCodecID codec = AV_CODEC_ID_NONE;
    int frames = 0;
    bool operator==(const StreamFacts&) const = default;
};

/// Decodes every frame of every stream.
std::vector<StreamFacts> decodeMovie(const std::filesystem::path& file) {
    AVFormatContext* format = nullptr;
    if (avformat_open_input(&format, file.c_str(), nullptr, nullptr) < 0)
        throw std::runtime_error("not a movie");
    avformat_find_stream_info(format, nullptr);
    std::vector<StreamFacts> facts;
    std::vector<AVCodecContext*> codecs;
    for (unsigned index = 0; index < format->nb_streams; ++index) {
        const AVCodecParameters* parameters = format->streams[index]->codecpar;
        facts.push_back({parameters->codec_id, 0});
        codecs.push_back(avcodec_alloc_context3(avcodec_find_decoder(parameters->codec_id)));
        avcodec_parameters_to_context(codecs.back(), parameters);
        EXPECT_EQ(avcodec_open2(codecs.back(), nullptr, nullptr), 0);
    }
    AVPacket* packet = av_packet_alloc();
    AVFrame* frame = av_frame_alloc();
    const auto drain = [&](std::size_t stream, const AVPacket* input) {
        EXPECT_EQ(avcodec_send_packet(codecs[stream], input), 0);
        while (avcodec_receive_frame(codecs[stream], frame) == 0)
            ++facts[stream].frames;
    };
    while (av_read_frame(format, packet) == 0) {
        drain(static_cast<std::size_t>(packet->stream_index), packet);
        av_packet_unref(packet);
    }
    for (std::size_t stream = 0; stream < codecs.size(); ++stream) {
        drain(stream, nullptr);
        avcodec_free_context(&codecs[stream]);
    }
    av_frame_free(&frame);
    av_packet_free(&packet);
    avformat_close_input(&format);
    return facts;
}

std::filesystem::path pathOf(const std::string& extension) {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(test::defaultHome())) {
        if (entry.path().extension() == extension) return entry.path();
    }
    throw std::runtime_error("no " + extension);
}

TEST(SampleMedia, hasJPEGPicturesThatDecodeWhole) {
    int large = 0;
    for (const auto& [path, contents] : test::filesBelow(test::defaultHome())) {
        if (!path.ends_with(".jpeg") || contents.empty()) continue;
        const Size size = decodeJPEG(contents);
        EXPECT_TRUE(size == (Size{1200, 900}) || size == (Size{160, 120})) << path;
        large += size.width == 1200 ? 1 : 0;
    }
    EXPECT_GE(large, 30);
}

TEST(SampleMedia, hasPNGPicturesThatDecodeWhole) {
    int count = 0;
    for (const auto& [path, contents] : test::filesBelow(test::defaultHome())) {
        if (!path.ends_with(".png")) continue;
        EXPECT_GE(decodePNG(contents).width, 160U) << path;
        ++count;
    }
    EXPECT_GE(count, 1);
}

TEST(SampleMedia, hasPicturesThatAllDiffer) {
    std::map<std::string, std::string> seen;
    for (const auto& [path, contents] :
         test::filesBelow(test::defaultHome() / "Library/Messages/Attachments")) {
        EXPECT_TRUE(seen.emplace(contents, path).second) << path << " is " << seen[contents];
    }
}

TEST(SampleMedia, hasAMovieWithPictureAndSound) {
    const auto streams = decodeMovie(pathOf(".mp4"));
    ASSERT_EQ(streams.size(), 2U);
    EXPECT_EQ(streams[0], (StreamFacts{AV_CODEC_ID_H264, 100}));
    EXPECT_EQ(streams[1].codec, AV_CODEC_ID_AAC);
    EXPECT_GE(streams[1].frames, 170);
}

TEST(SampleMedia, hasAVoiceNoteOfSoundAlone) {
    const auto streams = decodeMovie(pathOf(".m4a"));
    ASSERT_EQ(streams.size(), 1U);
    EXPECT_EQ(streams[0].codec, AV_CODEC_ID_AAC);
    EXPECT_GE(streams[0].frames, 280);
}

TEST(SampleMedia, hasAnAnimationOfManyPictures) {
    EXPECT_EQ(decodeMovie(pathOf(".gif")), (std::vector<StreamFacts>{{AV_CODEC_ID_GIF, 18}}));
}

TEST(SampleMedia, hasAPDFWhoseTableOfObjectsIsRight) {
    const std::string file = test::contentsOf("Booking LH-2024-0720.pdf");
    EXPECT_THAT(file, StartsWith("%PDF-1.4\n"));
    const std::size_t end = file.rfind("startxref\n") + 10;
    std::size_t table = 0;
    std::from_chars(file.data() + end, file.data() + file.size(), table);
    ASSERT_THAT(file.substr(table), StartsWith("xref\n0 8\n"));
    for (std::size_t object = 1; object < 8; ++object) {
        std::size_t offset = 0;
        const char* entry = file.data() + table + 9 + object * 20;
        std::from_chars(entry, entry + 10, offset);
        EXPECT_THAT(file.substr(offset), StartsWith(std::to_string(object) + " 0 obj\n"));
    }
}

TEST(SampleMedia, escapesBracketsInAPDF) {
    const Data file = onePagePDF("A (small) heading", {"back\\slash"});
    const std::string text(file.begin(), file.end());
    EXPECT_THAT(text, HasSubstr("(A \\(small\\) heading) Tj"));
    EXPECT_THAT(text, HasSubstr("(back\\\\slash) Tj"));
}

TEST(SampleMedia, hasATableAndACard) {
    EXPECT_THAT(test::contentsOf("Lake house costs.csv"), StartsWith("What,Who paid,Amount,Shared by\r\n"));
    EXPECT_THAT(test::contentsOf("Edda Seeberg.vcf"), StartsWith("BEGIN:VCARD\r\nVERSION:3.0\r\n"));
}

} // namespace
} // namespace quillbook::sample
