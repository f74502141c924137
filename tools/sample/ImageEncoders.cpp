#include "tools/sample/ImageEncoders.h"

#include "tools/writing/SampleError.h"

#include <cstdio>
#include <cstdlib>

#include <jpeglib.h>
#include <png.h>

namespace quillbook::sample {
namespace {

std::vector<std::uint8_t> rgbBytes(const PictureCanvas& picture) {
    const std::vector<std::uint32_t> pixels = picture.pixels();
    std::vector<std::uint8_t> bytes;
    bytes.reserve(pixels.size() * 3);
    for (const std::uint32_t pixel : pixels) {
        for (const unsigned shift : {16U, 8U, 0U})
            bytes.push_back(static_cast<std::uint8_t>(pixel >> shift));
    }
    return bytes;
}

[[noreturn]] void failJPEG(j_common_ptr codec) {
    char words[JMSG_LENGTH_MAX];
    codec->err->format_message(codec, words);
    throw SampleError(SampleError::Reason::encoderFailed, words);
}

struct CompressorCloser {
    void operator()(jpeg_compress_struct* codec) const { jpeg_destroy_compress(codec); }
};

struct MemoryFreer {
    void operator()(unsigned char* memory) const { std::free(memory); }
};

} // namespace

Data encodeJPEG(const PictureCanvas& picture, int quality) {
    std::vector<std::uint8_t> bytes = rgbBytes(picture);
    jpeg_error_mgr errors{};
    jpeg_compress_struct codec{};
    codec.err = jpeg_std_error(&errors);
    errors.error_exit = failJPEG;
    jpeg_create_compress(&codec);
    const std::unique_ptr<jpeg_compress_struct, CompressorCloser> closer(&codec);
    unsigned char* output = nullptr;
    unsigned long length = 0;
    jpeg_mem_dest(&codec, &output, &length);
    codec.image_width = static_cast<JDIMENSION>(picture.widthPixels());
    codec.image_height = static_cast<JDIMENSION>(picture.heightPixels());
    codec.input_components = 3;
    codec.in_color_space = JCS_RGB;
    jpeg_set_defaults(&codec);
    jpeg_set_quality(&codec, quality, TRUE);
    codec.dct_method = JDCT_ISLOW; // The same result with and without vector instructions.
    jpeg_start_compress(&codec, TRUE);
    for (std::size_t row = 0; row < codec.image_height; ++row) {
        JSAMPROW pointer = bytes.data() + row * codec.image_width * 3;
        jpeg_write_scanlines(&codec, &pointer, 1);
    }
    jpeg_finish_compress(&codec);
    const std::unique_ptr<unsigned char, MemoryFreer> freer(output);
    return Data(output, output + length);
}

Data encodePNG(const PictureCanvas& picture) {
    const std::vector<std::uint8_t> bytes = rgbBytes(picture);
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(picture.widthPixels());
    image.height = static_cast<png_uint_32>(picture.heightPixels());
    image.format = PNG_FORMAT_RGB;
    png_alloc_size_t length = 0;
    Data data;
    const bool isMeasured =
        png_image_write_to_memory(&image, nullptr, &length, 0, bytes.data(), 0, nullptr) != 0;
    if (isMeasured) data.resize(length);
    if (!isMeasured ||
        png_image_write_to_memory(&image, data.data(), &length, 0, bytes.data(), 0, nullptr) == 0) {
        throw SampleError(SampleError::Reason::encoderFailed, image.message);
    }
    data.resize(length);
    return data;
}

} // namespace quillbook::sample
