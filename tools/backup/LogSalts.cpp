#include "tools/backup/LogSalts.h"

#include "core/records/ConversationSummary.h"
#include "tools/writing/SampleError.h"

#include <fstream>
#include <span>

namespace quillbook::sample {
namespace {

constexpr std::size_t headerBytes = 32;
constexpr std::size_t frameHeaderBytes = 24;
constexpr std::size_t pageSizeOffset = 8;
constexpr std::size_t headerSaltsOffset = 16;
constexpr std::size_t headerSumOffset = 24;
constexpr std::size_t frameSaltsOffset = 8;
constexpr std::size_t frameSumOffset = 16;
/// Of a frame's header only the page number and the database's size are summed.
constexpr std::size_t summedFrameHeaderBytes = 8;

std::uint32_t bigEndianWord(const Data& bytes, std::size_t offset) {
    std::uint32_t word = 0;
    for (std::size_t index = 0; index < 4; ++index)
        word = word << 8U | bytes[offset + index];
    return word;
}

void setBigEndianWord(Data& bytes, std::size_t offset, std::uint32_t word) {
    for (std::size_t index = 0; index < 4; ++index)
        bytes[offset + index] = static_cast<std::uint8_t>(word >> (24U - 8U * index));
}

/// The running checksum over pairs of words, whose order of bytes the lowest bit of the magic number tells.
class LogChecksum {
public:
    explicit LogChecksum(bool isBigEndian) : isBigEndian_(isBigEndian) {}

    void add(std::span<const std::uint8_t> bytes) {
        for (; bytes.size() >= 8; bytes = bytes.subspan(8)) {
            first_ += word(bytes.first(4)) + second_;
            second_ += word(bytes.subspan(4, 4)) + first_;
        }
    }
    void store(Data& bytes, std::size_t offset) const {
        setBigEndianWord(bytes, offset, first_);
        setBigEndianWord(bytes, offset + 4, second_);
    }

private:
    std::uint32_t word(std::span<const std::uint8_t> bytes) const {
        std::uint32_t value = 0;
        for (std::size_t index = 0; index < 4; ++index)
            value = value << 8U | bytes[isBigEndian_ ? index : 3 - index];
        return value;
    }

    bool isBigEndian_;
    std::uint32_t first_ = 0;
    std::uint32_t second_ = 0;
};

void setSalts(Data& bytes, std::size_t offset, std::uint64_t salts) {
    setBigEndianWord(bytes, offset, static_cast<std::uint32_t>(salts >> 32U));
    setBigEndianWord(bytes, offset + 4, static_cast<std::uint32_t>(salts));
}

bool readAt(std::fstream& file, std::streamoff position, Data& bytes) {
    file.seekg(position);
    file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return file.gcount() == static_cast<std::streamsize>(bytes.size());
}

void writeAt(std::fstream& file, std::streamoff position, const Data& bytes) {
    file.clear();
    file.seekp(position);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!file) throw SampleError(SampleError::Reason::databaseFailed, "the write-ahead log");
}

} // namespace

void setLogSalts(const std::filesystem::path& log, std::uint64_t salts) {
    std::fstream file(log, std::ios::in | std::ios::out | std::ios::binary);
    Data header(headerBytes);
    if (!file || !readAt(file, 0, header))
        throw SampleError(SampleError::Reason::databaseFailed, "the write-ahead log");
    LogChecksum checksum((header[3] & 1U) != 0);
    setSalts(header, headerSaltsOffset, salts);
    checksum.add(std::span(header).first(headerSumOffset));
    checksum.store(header, headerSumOffset);
    writeAt(file, 0, header);

    Data frame(frameHeaderBytes + bigEndianWord(header, pageSizeOffset));
    for (std::streamoff position = headerBytes; readAt(file, position, frame);
         position += static_cast<std::streamoff>(frame.size())) {
        setSalts(frame, frameSaltsOffset, salts);
        checksum.add(std::span(frame).first(summedFrameHeaderBytes));
        checksum.add(std::span(frame).subspan(frameHeaderBytes));
        checksum.store(frame, frameSumOffset);
        writeAt(file, position, frame);
    }
}

} // namespace quillbook::sample
