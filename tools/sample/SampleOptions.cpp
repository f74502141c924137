#include "tools/sample/SampleOptions.h"

#include "tools/sample/SampleError.h"

#include <charconv>
#include <concepts>

namespace quillbook::sample {
namespace {

template <std::integral Number>
Number readNumber(const std::string& name, const std::string& text) {
    Number value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value < Number{0}) {
        throw SampleError(SampleError::Reason::badArgument, name + " " + text);
    }
    return value;
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
        if (index + 1 == arguments.size()) throw SampleError(SampleError::Reason::badArgument, name);
        apply(options, name, arguments[++index]);
    }
    if (options.home.empty()) throw SampleError(SampleError::Reason::badArgument, "--home DIR is missing");
    if (options.messageCount == 0 && options.attachmentCount > 0) options.attachmentCount = 0;
    return options;
}

std::string sampleHelp() {
    return "quillbook-sample --home DIR [--seed N] [--messages N] [--attachments N] [--one-chat]\n"
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
           "  --help             this text\n";
}

} // namespace quillbook::sample
