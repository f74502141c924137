#include "backup/BackupAttachmentLocator.h"
#include "backup/FileDecryption.h"
#include "core/interfaces/ContactResolving.h"
#include "export/ExportCoordinator.h"
#include "store/MessagesRepository.h"
#include "tools/backup/BackupWriter.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <functional>
#include <map>
#include <numeric>
#include <random>
#include <stdexcept>
#include <thread>

#include <fmt/format.h>
#include <openssl/evp.h>
#include <sqlite3.h>

// quillbook-backup-probe WORK ARGUMENT …: writes the backups that are measured, and does one piece of the
// work on them a run, or what a person would use instead within a program. Prints one JSON object: the
// seconds of the work itself, and what it counted.

namespace quillbook {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using Arguments = std::vector<std::string>;

constexpr const char* password = "lake house";
constexpr const char* attachmentsFolder = "Library/SMS/Attachments/";

struct Finding {
    double seconds = 0;
    std::uintmax_t count = 0;
};

Finding timed(const std::function<std::uintmax_t()>& work) {
    const auto start = Clock::now();
    const std::uintmax_t count = work();
    return {std::chrono::duration<double>(Clock::now() - start).count(), count};
}

sample::BackupDescription description(const fs::path& folder, std::int64_t rounds) {
    return {.folder = folder, .encryption = sample::BackupEncryption{.password = password, .rounds = rounds}};
}

std::shared_ptr<PreparedBackup> opened(const fs::path& backup, const fs::path& temporary) {
    return PreparedBackup::open(backup, true, password, {}, temporary);
}

std::string attachmentPath(std::uintmax_t number) {
    return attachmentsFolder + fmt::format("{:02x}/{}.bin", number % 256, number);
}

/// MESSAGES BACKUP ROUNDS BYTES: a Messages database in a backup whose index is filled up to a size.
Finding writeIndexed(const Arguments& arguments) {
    sample::BackupWriter writer(description(arguments.at(1), std::stoll(arguments.at(2))));
    writer.addFile("HomeDomain", "Library/SMS/sms.db", arguments.at(0));
    constexpr std::uintmax_t bytesOfARow = 900; // With its share of the indexes; measured.
    const std::uintmax_t rows = std::stoull(arguments.at(3)) / bytesOfARow;
    for (std::uintmax_t row = 0; row < rows; ++row) {
        writer.addBytes("CameraRollDomain", fmt::format("Media/DCIM/{:03}/IMG_{:06}.HEIC", row % 1'000, row),
                        "", {.hasStoredFile = false});
    }
    writer.finish();
    return {0, rows};
}

/// MESSAGES BACKUP COUNT BYTES: a Messages database and attachments of random bytes.
Finding writeAttachments(const Arguments& arguments) {
    sample::BackupWriter writer(description(arguments.at(1), 1'000));
    writer.addFile("HomeDomain", "Library/SMS/sms.db", arguments.at(0));
    const std::uintmax_t count = std::stoull(arguments.at(2));
    std::string bytes(std::stoull(arguments.at(3)), '\0');
    std::mt19937_64 random(1);
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(random()); });
    for (std::uintmax_t number = 0; number < count; ++number) {
        std::copy_n(fmt::format("{:16}", number).begin(), std::min<std::size_t>(16, bytes.size()),
                    bytes.begin());
        writer.addBytes("MediaDomain", attachmentPath(number), bytes);
    }
    writer.finish();
    return {0, count};
}

/// FILE COPY: decrypts with the key 00 01 … 1F, as `openssl enc` is told to.
Finding decrypt(const Arguments& arguments) {
    std::array<std::uint8_t, 32> key{};
    std::iota(key.begin(), key.end(), std::uint8_t{0});
    return timed([&] {
        FileReader input(arguments.at(0));
        FileWriter output(arguments.at(1));
        const auto size = fs::file_size(arguments.at(0));
        decryptStream(input, output, key, static_cast<std::int64_t>(size));
        output.close();
        return size;
    });
}

/// BACKUP TEMPORARY
Finding open(const Arguments& arguments) {
    std::shared_ptr<PreparedBackup> backup;
    return timed([&] {
        backup = opened(arguments.at(0), arguments.at(1));
        return fs::file_size(backup->messageDatabaseURL());
    });
}

/// BACKUP TEMPORARY COUNT: every attachment is asked for and released.
Finding lookUp(const Arguments& arguments) {
    const auto backup = opened(arguments.at(0), arguments.at(1));
    const std::uintmax_t count = std::stoull(arguments.at(2));
    return timed([&] {
        std::uintmax_t found = 0;
        for (std::uintmax_t number = 0; number < count; ++number) {
            const auto file = backup->fileURL("MediaDomain", attachmentPath(number));
            if (!file) continue;
            ++found;
            backup->releaseFile(*file);
        }
        return found;
    });
}

class PlainLookups {
public:
    explicit PlainLookups(const fs::path& manifest) {
        sqlite3_open_v2(manifest.c_str(), &database_, SQLITE_OPEN_READONLY, nullptr);
        sqlite3_prepare_v2(database_,
                           "SELECT fileID, domain, relativePath, flags, file FROM Files WHERE domain = ? AND "
                           "relativePath = ? LIMIT 1",
                           -1, &statement_, nullptr);
    }
    ~PlainLookups() {
        sqlite3_finalize(statement_);
        sqlite3_close(database_);
    }
    PlainLookups(const PlainLookups&) = delete;
    PlainLookups& operator=(const PlainLookups&) = delete;

    std::string fileID(const std::string& path) {
        sqlite3_reset(statement_);
        sqlite3_bind_text(statement_, 1, "MediaDomain", -1, SQLITE_STATIC);
        sqlite3_bind_text(statement_, 2, path.c_str(), -1, SQLITE_STATIC);
        if (sqlite3_step(statement_) != SQLITE_ROW) throw std::runtime_error("no row for " + path);
        return reinterpret_cast<const char*>(sqlite3_column_text(statement_, 0));
    }

private:
    sqlite3* database_ = nullptr;
    sqlite3_stmt* statement_ = nullptr;
};

void decryptPlainly(const fs::path& file, const fs::path& copy) {
    std::ifstream input(file, std::ios::binary);
    std::string bytes(fs::file_size(file), '\0');
    input.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    const std::array<std::uint8_t, 32> key{};
    const std::array<std::uint8_t, 16> start{};
    std::string text(bytes.size() + 16, '\0');
    EVP_CIPHER_CTX* context = EVP_CIPHER_CTX_new();
    EVP_DecryptInit_ex(context, EVP_aes_256_cbc(), nullptr, key.data(), start.data());
    EVP_CIPHER_CTX_set_padding(context, 0);
    int length = 0;
    EVP_DecryptUpdate(context, reinterpret_cast<std::uint8_t*>(text.data()), &length,
                      reinterpret_cast<const std::uint8_t*>(bytes.data()), static_cast<int>(bytes.size()));
    EVP_CIPHER_CTX_free(context);
    std::ofstream(copy, std::ios::binary).write(text.data(), length);
}

/// BACKUP TEMPORARY COUNT: what a short program of one's own would do for the same files: one prepared
/// statement, one file at a time read, decrypted and written, under whatever key.
Finding lookUpPlainly(const Arguments& arguments) {
    const fs::path backup = arguments.at(0);
    const auto prepared = opened(backup, arguments.at(1));
    const fs::path copy = prepared->workingDirectory() / "copy";
    const std::uintmax_t count = std::stoull(arguments.at(2));
    return timed([&] {
        PlainLookups lookups(prepared->workingDirectory() / "Manifest.db");
        for (std::uintmax_t number = 0; number < count; ++number) {
            const std::string fileID = lookups.fileID(attachmentPath(number));
            decryptPlainly(backup / fileID.substr(0, 2) / fileID, copy);
            fs::remove(copy);
        }
        return count;
    });
}

class NoContacts final : public ContactResolving {
public:
    ContactIdentities resolve(const std::vector<std::string>& /*addresses*/) override { return {}; }
};

/// The most that the decrypted attachments took at any time, asked for as often as it goes.
class DiskWatch {
public:
    explicit DiskWatch(fs::path folder) : folder_(std::move(folder)) {
        watcher_ = std::jthread([this](const std::stop_token& stop) {
            while (!stop.stop_requested()) {
                most_ = std::max(most_, bytesNow());
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
        });
    }
    std::uintmax_t most() {
        watcher_ = {};
        return most_;
    }

private:
    std::uintmax_t bytesNow() const {
        std::uintmax_t bytes = 0;
        std::error_code gone;
        for (fs::directory_iterator file(folder_, gone), end; !gone && file != end; file.increment(gone)) {
            std::error_code unreachable;
            const auto size = file->file_size(unreachable);
            if (!unreachable) bytes += size;
        }
        return bytes;
    }

    fs::path folder_;
    std::uintmax_t most_ = 0;
    std::jthread watcher_;
};

/// BACKUP TEMPORARY DESTINATION: an album of conversation 1. Counts the bytes that its decrypted attachments
/// took at most.
Finding exportAlbum(const Arguments& arguments) {
    const auto backup = opened(arguments.at(0), arguments.at(1));
    const auto repository = std::make_shared<MessagesRepository>(
        backup->messageDatabaseURL(), std::make_shared<BackupAttachmentLocator>(backup),
        std::make_shared<NoContacts>());
    DiskWatch disk(backup->workingDirectory() / "files");
    Finding finding = timed([&] {
        ExportCoordinator coordinator(repository);
        const auto album =
            coordinator.exportConversation(SourceID{"1"}, arguments.at(2), {}, [](const auto&) {}, {});
        return static_cast<std::uintmax_t>(album.attachmentCount);
    });
    std::fprintf(stderr, "(%ju attachments in the album)\n", finding.count);
    finding.count = disk.most();
    return finding;
}

int run(const Arguments& words) {
    const std::map<std::string, std::function<Finding(const Arguments&)>> works = {
        {"write-indexed", writeIndexed},
        {"write-attachments", writeAttachments},
        {"decrypt", decrypt},
        {"open", open},
        {"look-up", lookUp},
        {"look-up-plainly", lookUpPlainly},
        {"export", exportAlbum},
    };
    const Finding finding = works.at(words.at(0))({words.begin() + 1, words.end()});
    std::printf("{\"seconds\": %.6f, \"count\": %ju}\n", finding.seconds, finding.count);
    return 0;
}

} // namespace
} // namespace quillbook

int main(int count, char** words) {
    try {
        return quillbook::run({words + 1, words + count});
    } catch (const std::exception& error) {
        std::fprintf(stderr, "quillbook-backup-probe: %s\n", error.what());
        return 1;
    }
}
