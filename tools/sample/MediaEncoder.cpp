#include "tools/sample/MediaEncoder.h"

#include "tools/writing/SampleError.h"

#include <algorithm>
#include <cstring>

// The headers are C, with casts of their own time.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wold-style-cast"
extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/channel_layout.h>
#include <libavutil/cpu.h>
#include <libavutil/opt.h>
}
#pragma GCC diagnostic pop

namespace quillbook::sample {
namespace {

constexpr int sampleRate = 44'100;
constexpr std::size_t ioBufferSize = 65'536;

int checked(int result, const char* what) {
    if (result >= 0) return result;
    char words[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(result, words, sizeof words);
    throw SampleError(SampleError::Reason::encoderFailed, std::string(what) + ": " + words);
}

template <typename Pointer>
Pointer* required(Pointer* pointer, const char* what) {
    if (pointer == nullptr) throw SampleError(SampleError::Reason::encoderFailed, what);
    return pointer;
}

struct CodecDeleter {
    void operator()(AVCodecContext* codec) const { avcodec_free_context(&codec); }
};
struct FrameDeleter {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};
struct PacketDeleter {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
struct FormatDeleter {
    void operator()(AVFormatContext* format) const { avformat_free_context(format); }
};
struct IODeleter {
    void operator()(AVIOContext* io) const {
        av_freep(&io->buffer);
        avio_context_free(&io);
    }
};
using Codec = std::unique_ptr<AVCodecContext, CodecDeleter>;
using Frame = std::unique_ptr<AVFrame, FrameDeleter>;

/// A file in memory that the muxer writes to and goes back in.
struct MemoryFile {
    Data bytes;
    std::size_t position = 0;

    static int write(void* opaque, std::uint8_t* data, int size) {
        auto& file = *static_cast<MemoryFile*>(opaque);
        const auto count = static_cast<std::size_t>(size);
        if (file.bytes.size() - file.position < count) file.bytes.resize(file.position + count);
        std::memcpy(file.bytes.data() + file.position, data, count);
        file.position += count;
        return size;
    }
    static std::int64_t seek(void* opaque, std::int64_t offset, int whence) {
        auto& file = *static_cast<MemoryFile*>(opaque);
        const auto size = static_cast<std::int64_t>(file.bytes.size());
        if (whence == AVSEEK_SIZE) return size;
        const std::int64_t base =
            whence == SEEK_END ? size : (whence == SEEK_CUR ? static_cast<std::int64_t>(file.position) : 0);
        if (base + offset < 0 || base + offset > size) return AVERROR(EINVAL);
        file.position = static_cast<std::size_t>(base + offset);
        return base + offset;
    }
};

/// ITU-R BT.601, full integers: two by two pixels share one chroma sample.
void fillFrame(AVFrame& frame, const PictureCanvas& picture) {
    const std::vector<std::uint32_t> pixels = picture.pixels();
    const int width = frame.width;
    const auto pixelAt = [&](int x, int y) {
        return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                      static_cast<std::size_t>(x)];
    };
    for (int y = 0; y < frame.height; ++y) {
        for (int x = 0; x < width; ++x) {
            const std::uint32_t pixel = pixelAt(x, y);
            const int red = static_cast<int>(pixel >> 16U & 0xFFU);
            const int green = static_cast<int>(pixel >> 8U & 0xFFU);
            const int blue = static_cast<int>(pixel & 0xFFU);
            frame.data[0][y * frame.linesize[0] + x] =
                static_cast<std::uint8_t>(16 + (66 * red + 129 * green + 25 * blue + 128) / 256);
            if (x % 2 != 0 || y % 2 != 0) continue;
            const int place = y / 2 * frame.linesize[1] + x / 2;
            frame.data[1][place] =
                static_cast<std::uint8_t>((-38 * red - 74 * green + 112 * blue + 128 * 257) / 256);
            frame.data[2][place] =
                static_cast<std::uint8_t>((112 * red - 94 * green - 18 * blue + 128 * 257) / 256);
        }
    }
}

} // namespace

struct MediaEncoder::Streams {
    MemoryFile file;
    std::unique_ptr<AVIOContext, IODeleter> io;
    std::unique_ptr<AVFormatContext, FormatDeleter> format;
    Codec videoCodec;
    Codec audioCodec;
    AVStream* videoStream = nullptr;
    AVStream* audioStream = nullptr;
    std::unique_ptr<AVPacket, PacketDeleter> packet{required(av_packet_alloc(), "packet")};
    std::int64_t frameCount = 0;
    std::int64_t sampleCount = 0;
    std::vector<float> pendingSound;

    explicit Streams(const std::optional<VideoFormat>& video) {
        av_log_set_level(AV_LOG_ERROR);
        av_force_cpu_flags(0);
        AVFormatContext* raw = nullptr;
        checked(avformat_alloc_output_context2(&raw, nullptr, "mp4", nullptr), "mp4");
        format.reset(raw);
        auto* buffer = static_cast<unsigned char*>(required(av_malloc(ioBufferSize), "memory"));
        io.reset(required(avio_alloc_context(buffer, static_cast<int>(ioBufferSize), 1, &file, nullptr,
                                             MemoryFile::write, MemoryFile::seek),
                          "memory"));
        format->pb = io.get();
        format->flags |= AVFMT_FLAG_BITEXACT;
        if (video) openVideo(*video);
        openAudio();
        checked(avformat_write_header(format.get(), nullptr), "header");
    }

    AVStream* addStream(Codec& codec, const char* name, AVDictionary** options) {
        codec->thread_count = 1;
        codec->flags |= AV_CODEC_FLAG_GLOBAL_HEADER | AV_CODEC_FLAG_BITEXACT;
        checked(avcodec_open2(codec.get(), nullptr, options), name);
        AVStream* stream = required(avformat_new_stream(format.get(), nullptr), "stream");
        stream->time_base = codec->time_base;
        checked(avcodec_parameters_from_context(stream->codecpar, codec.get()), name);
        return stream;
    }

    void openVideo(const VideoFormat& video) {
        const AVCodec* encoder = required(avcodec_find_encoder_by_name("libx264"), "libx264");
        videoCodec.reset(required(avcodec_alloc_context3(encoder), "memory"));
        videoCodec->width = video.widthPixels;
        videoCodec->height = video.heightPixels;
        videoCodec->pix_fmt = AV_PIX_FMT_YUV420P;
        videoCodec->time_base = {1, video.framesPerSecond};
        videoCodec->framerate = {video.framesPerSecond, 1};
        AVDictionary* options = nullptr;
        av_dict_set(&options, "preset", "medium", 0);
        av_dict_set(&options, "crf", "26", 0);
        av_dict_set(&options, "x264-params", "threads=1:lookahead-threads=1:cpu-independent=1:asm=0", 0);
        videoStream = addStream(videoCodec, "libx264", &options);
        av_dict_free(&options);
    }

    void openAudio() {
        const AVCodec* encoder = required(avcodec_find_encoder(AV_CODEC_ID_AAC), "aac");
        audioCodec.reset(required(avcodec_alloc_context3(encoder), "memory"));
        audioCodec->sample_fmt = AV_SAMPLE_FMT_FLTP;
        audioCodec->sample_rate = sampleRate;
        audioCodec->bit_rate = 64'000;
        audioCodec->time_base = {1, sampleRate};
        av_channel_layout_default(&audioCodec->ch_layout, 1);
        audioStream = addStream(audioCodec, "aac", nullptr);
    }

    /// A null frame ends the stream.
    void encode(const Codec& codec, AVStream* stream, const AVFrame* frame) {
        checked(avcodec_send_frame(codec.get(), frame), "frame");
        while (avcodec_receive_packet(codec.get(), packet.get()) == 0) {
            if (packet->duration == 0) packet->duration = 1; // A frame of the picture; sound has its own.
            av_packet_rescale_ts(packet.get(), codec->time_base, stream->time_base);
            packet->stream_index = stream->index;
            checked(av_interleaved_write_frame(format.get(), packet.get()), "packet");
        }
    }

    void encodeSound(std::size_t count) {
        const Frame frame(required(av_frame_alloc(), "memory"));
        frame->format = AV_SAMPLE_FMT_FLTP;
        frame->nb_samples = static_cast<int>(count);
        frame->sample_rate = sampleRate;
        checked(av_channel_layout_copy(&frame->ch_layout, &audioCodec->ch_layout), "channels");
        checked(av_frame_get_buffer(frame.get(), 0), "memory");
        std::memcpy(frame->data[0], pendingSound.data(), count * sizeof(float));
        pendingSound.erase(pendingSound.begin(), pendingSound.begin() + static_cast<std::ptrdiff_t>(count));
        frame->pts = sampleCount;
        sampleCount += static_cast<std::int64_t>(count);
        encode(audioCodec, audioStream, frame.get());
    }
};

MediaEncoder::MediaEncoder(std::optional<VideoFormat> video) : streams_(std::make_unique<Streams>(video)) {}

MediaEncoder::~MediaEncoder() = default;

void MediaEncoder::addFrame(const PictureCanvas& picture) {
    const Frame frame(required(av_frame_alloc(), "memory"));
    frame->format = AV_PIX_FMT_YUV420P;
    frame->width = picture.widthPixels();
    frame->height = picture.heightPixels();
    checked(av_frame_get_buffer(frame.get(), 0), "memory");
    fillFrame(*frame, picture);
    frame->pts = streams_->frameCount++;
    streams_->encode(streams_->videoCodec, streams_->videoStream, frame.get());
}

void MediaEncoder::addSound(const std::vector<float>& samples) {
    auto& pending = streams_->pendingSound;
    pending.insert(pending.end(), samples.begin(), samples.end());
    const auto frameSize = static_cast<std::size_t>(streams_->audioCodec->frame_size);
    while (pending.size() >= frameSize)
        streams_->encodeSound(frameSize);
}

Data MediaEncoder::finish() {
    if (!streams_->pendingSound.empty()) streams_->encodeSound(streams_->pendingSound.size());
    if (streams_->videoCodec) streams_->encode(streams_->videoCodec, streams_->videoStream, nullptr);
    streams_->encode(streams_->audioCodec, streams_->audioStream, nullptr);
    checked(av_write_trailer(streams_->format.get()), "trailer");
    avio_flush(streams_->io.get());
    return std::move(streams_->file.bytes);
}

} // namespace quillbook::sample
