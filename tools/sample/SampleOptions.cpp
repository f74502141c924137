#include "tools/sample/SampleOptions.h"

#include "tools/writing/SampleError.h"

#include <algorithm>
#include <charconv>
#include <concepts>
#include <limits>

namespace quillbook::sample {
namespace {

[[noreturn]] void refuse(const std::string& name, const std::string& value) {
    throw SampleError(SampleError::Reason::badArgument, name + " " + value);
}

template <std::integral Number>
Number readNumber(const std::string& name, const std::string& text) {
    Number value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value < Number{0}) {
        refuse(name, text);
    }
    return value;
}

void addBackup(SampleOptions& options, const std::string& name, const std::string& value) {
    if (value != "plain" && value != "encrypted") refuse(name, value);
    const BackupKind kind = value == "plain" ? BackupKind::plain : BackupKind::encrypted;
    const auto& backups = options.backups;
    if (std::find(backups.begin(), backups.end(), kind) != backups.end()) refuse(name, value);
    options.backups.push_back(kind);
}

/// At least one round, and no more than libcrypto counts.
std::int64_t readRounds(const std::string& name, const std::string& value) {
    const auto rounds = readNumber<std::int64_t>(name, value);
    if (rounds < 1 || rounds > std::numeric_limits<int>::max()) refuse(name, value);
    return rounds;
}

KeyDerivation readKeyDerivation(const std::string& name, const std::string& value) {
    if (value == "single") return KeyDerivation::single;
    if (value == "double") return KeyDerivation::twofold;
    refuse(name, value);
}

/// Sets the one option that takes a value.
void apply(SampleOptions& options, const std::string& name, const std::string& value) {
    if (name == "--home") {
        options.home = std::filesystem::path(value);
    } else if (name == "--seed") {
        options.seed = readNumber<std::uint64_t>(name, value);
    } else if (name == "--messages") {
        options.messageCount = readNumber<std::int64_t>(name, value);
    } else if (name == "--attachments") {
        options.attachmentCount = readNumber<std::int64_t>(name, value);
    } else if (name == "--backup") {
        addBackup(options, name, value);
    } else if (name == "--password") {
        options.password = value;
    } else if (name == "--iterations") {
        options.keyDerivationRounds = readRounds(name, value);
    } else if (name == "--key-derivation") {
        options.keyDerivation = readKeyDerivation(name, value);
    } else {
        throw SampleError(SampleError::Reason::badArgument, name);
    }
}

} // namespace

std::optional<SampleOptions> parseSampleOptions(std::span<const std::string> arguments) {
    SampleOptions options;
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        const std::string& name = arguments[index];
        if (name == "--help") return std::nullopt;
        if (name == "--one-chat") {
            options.isOneChat = true;
            continue;
        }
        if (name == "--caches") {
            options.hasCaches = true;
            continue;
        }
        if (index + 1 == arguments.size()) throw SampleError(SampleError::Reason::badArgument, name);
        apply(options, name, arguments[++index]);
    }
    if (options.home.empty()) throw SampleError(SampleError::Reason::badArgument, "--home DIR is missing");
    if (options.messageCount == 0 && options.attachmentCount > 0) options.attachmentCount = 0;
    return options;
}

std::string sampleHelp() {
    return "quillbook-sample --home DIR [--seed N] [--messages N] [--attachments N] [--one-chat]\n"
           "                 [--backup plain|encrypted]... [--password TEXT] [--iterations N]\n"
           "                 [--key-derivation single|double] [--caches]\n"
           "\n"
           "Writes an invented Messages library to DIR/Library/Messages and an address book to "
           "DIR/contacts.vcf.\n"
           "The same arguments give the same files, byte for byte. A library that stands there is never "
           "touched.\n"
           "\n"
           "  --home DIR         the folder that plays the home folder; made if it is missing\n"
           "  --seed N           another seed gives other small talk, times, identifiers and pictures (1)\n"
           "  --messages N       rows of the message table, reactions among them (1500). Below about 1000 "
           "some of\n"
           "                     the written dialogues are cut short. From 100000 on the library is a ground "
           "for\n"
           "                     measuring: one generated chat for every 250 messages\n"
           "  --attachments N    rows of the attachment table (50). The first 50 are drawn with care, those "
           "beyond are\n"
           "                     small pictures and texts, and those beyond 2000 have no file on the disk\n"
           "  --one-chat         all messages in one chat, every third body only as a typed archive\n"
           "  --backup KIND      also writes a device backup of the library, plain or encrypted, below\n"
           "                     DIR/Library/Application Support/MobileSync/Backup; may be given once for "
           "each kind\n"
           "  --password TEXT    the password of the encrypted backup (lake house)\n"
           "  --iterations N     rounds of the slow step from the password to the keys (10000)\n"
           "  --key-derivation   single: one step from the password to the keys, as in older backups; "
           "double: "
           "two\n"
           "                     steps (double)\n"
           "  --caches           takes the files of seven attachments of the richest chat out of the\n"
           "                     library, as Messages in iCloud does, and leaves copies in\n"
           "                     DIR/Library/Caches/CloudKit, DIR/Library/Application Support/CloudKit\n"
           "                     and DIR/Library/Messages/CloudKitMetaData: three as they were, one there\n"
           "                     twice, one a byte short, one hidden, one as a symbolic link. Database and\n"
           "                     backups are the same as without; the backups still have the files\n"
           "  --help             this text\n";
}

} // namespace quillbook::sample
