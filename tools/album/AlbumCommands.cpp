#include "tools/album/AlbumCommands.h"

#include "tools/album/ResultJSON.h"

#include <cstdio>

namespace quillbook::tools {
namespace {

void printSources(ModelDriver& driver) {
    for (const MessageSource& source : driver.model().state().availableSources)
        printLine(source);
}

void printList(ModelDriver& driver, const AlbumArguments& arguments) {
    if (arguments.search) driver.search(*arguments.search);
    for (const ConversationSummary& summary : driver.model().state().conversations)
        printLine(summary);
}

void printConversation(ModelDriver& driver, const AlbumArguments& arguments) {
    const ArchiveConversation conversation = driver.load(*arguments.conversation);
    JSONWriter json([](std::string_view piece) { std::fwrite(piece.data(), 1, piece.size(), stdout); });
    writeJSON(json, conversation);
    json.finish();
    std::fputc('\n', stdout);
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0)
        throw ModelError("The output could not be written.");
}

void printExport(ModelDriver& driver, const AlbumArguments& arguments) {
    const ExportResult result = driver.exportConversation([&](const ExportProgress& progress) {
        if (arguments.showsProgress) printLine(progress);
    });
    printLine(result);
}

} // namespace

void runCommand(ModelDriver& driver, const AlbumArguments& arguments) {
    driver.start();
    if (arguments.source && *arguments.source != driver.model().state().selectedSourceID) {
        driver.selectSource(*arguments.source);
    }
    if (arguments.command == "sources") return printSources(driver);
    if (arguments.command == "list") return printList(driver, arguments);
    if (arguments.command == "show") return printConversation(driver, arguments);
    if (arguments.command == "survey") return printLine(driver.survey());
    if (arguments.command == "caches") return printLine(driver.searchCaches());
    if (arguments.command == "recover") return printLine(driver.recover());
    if (arguments.command == "prior") return printLine(driver.priorAlbum());
    printExport(driver, arguments);
}

} // namespace quillbook::tools
