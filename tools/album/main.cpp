#include "core/records/Cancellation.h"
#include "tools/album/AlbumCommands.h"
#include "tools/album/Interrupt.h"

#include <cstdio>
#include <span>

namespace {

constexpr int exitInterrupted = 130; // 128 and the number of SIGINT, as shells count; for any signal.

int run(std::span<const char* const> words) {
    using namespace quillbook;
    using namespace quillbook::tools;
    try {
        const AlbumArguments arguments = AlbumArguments::parse(words);
        ModelDriver driver(arguments);
        const Interrupt interrupt([&] { driver.interrupt(); });
        runCommand(driver, arguments);
        return 0;
    } catch (const CancellationError&) {
        return exitInterrupted;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", describe(error).c_str());
        return 1;
    }
}

} // namespace

int main(int count, char** words) {
    return run(std::span<const char* const>(words, static_cast<std::size_t>(count)).subspan(1));
}
