#pragma once

#include "tools/backup/BackupWriter.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace quillbook::sample {

enum class BackupKind { plain, encrypted };

struct SampleOptions {
    std::filesystem::path home; ///< The library goes to Library/Messages below it.
    std::uint64_t seed = 1;
    std::int64_t messageCount = 1'500;   ///< Rows of the table message, reactions among them.
    std::int64_t attachmentCount = 50;   ///< Rows of the table attachment.
    bool isOneChat = false;              ///< All messages in one chat, and no other chats.
    std::vector<BackupKind> backups;     ///< Device backups that are made of the library, each kind once.
    std::string password = "lake house"; ///< Of an encrypted backup.
    std::int64_t keyDerivationRounds = 10'000; ///< Of the slow step from the password to the keys.
    KeyDerivation keyDerivation = KeyDerivation::twofold;
    bool hasCaches = false; ///< Files of some attachments lie in caches instead of in the library.

    bool operator==(const SampleOptions&) const = default;
};

/// From this many messages on the library is a ground for measuring: generated chats instead of written ones.
inline constexpr std::int64_t bulkMessageCount = 100'000;
/// Attachments beyond this many have a record and no file.
inline constexpr std::int64_t attachmentFileLimit = 2'000;

/// The options that stand on a command line, without the program's name; nothing if help was asked for.
/// Throws SampleError for unknown or malformed arguments and where --home is missing.
std::optional<SampleOptions> parseSampleOptions(std::span<const std::string> arguments);

std::string sampleHelp();

} // namespace quillbook::sample
