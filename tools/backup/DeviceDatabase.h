#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string_view>

namespace quillbook::sample {

/// A Messages database as a device keeps it: the paths of the attachments are those of the device, and the
/// newest messages lie in the write-ahead log alone.
class DeviceDatabase {
public:
    /// Makes it out of a copy of "chat.db", as "sms.db" in the working folder. Throws SampleError and
    /// FileError.
    DeviceDatabase(const std::filesystem::path& chatDatabase, const std::filesystem::path& workingFolder,
                   std::uint64_t seed);

    const std::filesystem::path& file() const { return file_; }
    /// The file with "-wal" or "-shm" behind its name; it need not exist.
    std::filesystem::path companion(std::string_view suffix) const;

    /// Every attachment's path below "Attachments" and its recorded size, in the order of their rows.
    void forEachAttachment(const std::function<void(std::string_view, std::int64_t)>& visit) const;

private:
    std::filesystem::path file_;
};

} // namespace quillbook::sample
