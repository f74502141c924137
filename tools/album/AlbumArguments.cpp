#include "tools/album/AlbumArguments.h"

#include <algorithm>
#include <array>
#include <functional>
#include <map>
#include <string_view>
#include <utility>

namespace quillbook::tools {
namespace {

constexpr std::string_view usage =
    "usage: quillbook-album [--home DIR] [--contacts FILE.vcf] COMMAND …\n"
    "  sources\n"
    "  list [--source ID] [--password-file F] [--search TEXT]\n"
    "  show --conversation ID [--source ID] [--password-file F]\n"
    "  survey --conversation ID [--source ID] [--password-file F]\n"
    "  caches --conversation ID\n"
    "  recover --conversation ID\n"
    "  prior --conversation ID --destination DIR [--source ID] [--password-file F]\n"
    "  export --conversation ID --destination DIR [--source ID] [--password-file F]\n"
    "         [--json] [--markdown] [--csv] [--progress]";

/// Walks the words of a command line.
class WordReader {
public:
    explicit WordReader(std::span<const char* const> words) : words_(words) {}
    bool isAtEnd() const { return words_.empty(); }
    std::string next() {
        std::string word = words_.front();
        words_ = words_.subspan(1);
        return word;
    }
    std::string valueOf(const std::string& option) {
        if (isAtEnd()) throw UsageError(option + " needs a value");
        return next();
    }

private:
    std::span<const char* const> words_;
};

struct Command {
    std::string_view name;
    bool needsConversation = false;
    bool needsDestination = false;
};

constexpr std::array commands = {
    Command{"sources"},
    Command{"list"},
    Command{.name = "show", .needsConversation = true},
    Command{.name = "survey", .needsConversation = true},
    Command{.name = "caches", .needsConversation = true},
    Command{.name = "recover", .needsConversation = true},
    Command{.name = "prior", .needsConversation = true, .needsDestination = true},
    Command{.name = "export", .needsConversation = true, .needsDestination = true},
};

void requireWhatTheCommandNeeds(const AlbumArguments& arguments) {
    if (arguments.command.empty()) throw UsageError("a command is missing");
    const auto* command = std::find_if(commands.begin(), commands.end(),
                                       [&](const Command& each) { return each.name == arguments.command; });
    if (command == commands.end()) throw UsageError("unknown command " + arguments.command);
    if (command->needsConversation && !arguments.conversation) throw UsageError("--conversation is missing");
    if (command->needsDestination && !arguments.destination) throw UsageError("--destination is missing");
}

} // namespace

std::string UsageError::description() const {
    return problem_ + "\n" + std::string(usage);
}

AlbumArguments AlbumArguments::parse(std::span<const char* const> words) {
    AlbumArguments arguments;
    const std::map<std::string, std::function<void(std::string)>, std::less<>> valueOptions = {
        {"--home", [&](std::string value) { arguments.home = std::filesystem::absolute(value); }},
        {"--contacts", [&](std::string value) { arguments.contacts = std::filesystem::absolute(value); }},
        {"--source", [&](std::string value) { arguments.source = std::move(value); }},
        {"--password-file",
         [&](std::string value) { arguments.passwordFile = std::filesystem::absolute(value); }},
        {"--search", [&](std::string value) { arguments.search = std::move(value); }},
        {"--conversation", [&](std::string value) { arguments.conversation = std::move(value); }},
        {"--destination",
         [&](std::string value) { arguments.destination = std::filesystem::absolute(value); }},
    };
    const std::map<std::string, bool*, std::less<>> switches = {
        {"--json", &arguments.options.includeJSON},
        {"--markdown", &arguments.options.includeMarkdown},
        {"--csv", &arguments.options.includeCSV},
        {"--progress", &arguments.showsProgress},
    };
    WordReader reader(words);
    while (!reader.isAtEnd()) {
        const std::string word = reader.next();
        if (const auto option = valueOptions.find(word); option != valueOptions.end()) {
            option->second(reader.valueOf(word));
        } else if (const auto found = switches.find(word); found != switches.end()) {
            *found->second = true;
        } else if (arguments.command.empty() && word.substr(0, 1) != "-") {
            arguments.command = word;
        } else {
            throw UsageError("unexpected " + word);
        }
    }
    requireWhatTheCommandNeeds(arguments);
    return arguments;
}

} // namespace quillbook::tools
