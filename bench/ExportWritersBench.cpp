#include "export/CSVTranscript.h"
#include "export/JSONFile.h"
#include "export/MarkdownTranscript.h"
#include "export/ScriptEscaper.h"
#include "export/WebArchive.h"

#include <fstream>

#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <sys/resource.h>

namespace quillbook {
namespace {

namespace fs = std::filesystem;

ArchiveParticipant participant(const std::string& address, std::optional<std::string> name) {
    ArchiveParticipant record;
    record.id = "participant-" + address;
    record.address = address;
    record.displayName = std::move(name);
    return record;
}

ArchiveAttachment picture(std::size_t number) {
    ArchiveAttachment record;
    record.id = {fmt::format("attachment-{}", number)};
    record.displayName = "IMG_0001.jpg";
    record.mimeType = "image/jpeg";
    record.byteSize = 2'345'678;
    record.archivePath = fmt::format("attachments/IMG_0001-{}.jpg", number);
    record.sha256 = std::string(64, 'a');
    return record;
}

ArchiveMessage message(std::size_t number, const std::vector<ArchiveParticipant>& participants) {
    ArchiveMessage record;
    record.id = {std::to_string(number * 3)};
    record.guid = fmt::format("0A1B2C3D-0000-4000-8000-{:012}", number);
    record.date = Date{700'000'000 + static_cast<double>(number) * 97.25};
    record.isFromMe = number % 3 == 0;
    if (!record.isFromMe) record.senderID = participants[number % 2].id;
    record.service = "iMessage";
    record.text = number % 5 == 0 ? fmt::format("Обед завтра в {}? — да, конечно", number)
                                  : fmt::format("It’s message {}, about *lunch* & more <3", number);
    if (number % 10 == 9) record.replyToGUID = fmt::format("0A1B2C3D-0000-4000-8000-{:012}", number / 2);
    if (number % 20 == 0) record.attachments.push_back(picture(number));
    return record;
}

const ArchiveConversation& conversation() {
    static const ArchiveConversation made = [] {
        ArchiveConversation record;
        record.id = {"7"};
        record.title = "Alma Birkeland";
        record.participants = {participant("+15550100", "Alma Birkeland"),
                               participant("+15550101", std::nullopt)};
        for (std::size_t number = 0; number < 500'000; ++number) {
            record.messages.push_back(message(number, record.participants));
        }
        return record;
    }();
    return made;
}

/// A folder in memory, if there is one, so that no disk is measured.
fs::path albumFolder() {
    const fs::path memory = "/dev/shm";
    const fs::path folder =
        (fs::exists(memory) ? memory : fs::temp_directory_path()) / "quillbook-bench-writers";
    fs::create_directories(folder / "Web");
    for (const char* name : {"index.html", "styles.css", "app.js"})
        std::ofstream(folder / "Web" / name) << "{{TITLE}}";
    return folder;
}

double peakMemoryMiB() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024;
}

/// Bytes a second that reach `file`, and by how much the process grew for it.
template <typename Write>
void measure(benchmark::State& state, const char* file, Write write) {
    const fs::path folder = albumFolder();
    conversation();
    const double before = peakMemoryMiB();
    std::int64_t bytes = 0;
    for (auto unused : state) {
        static_cast<void>(unused);
        write(folder);
        bytes += static_cast<std::int64_t>(fs::file_size(folder / file));
    }
    state.SetBytesProcessed(bytes);
    state.counters["grownMiB"] = peakMemoryMiB() - before;
    fs::remove_all(folder);
}

void transcriptJSON(benchmark::State& state) {
    measure(state, "transcript.json",
            [](const fs::path& folder) { writeJSONFile(folder / "transcript.json", conversation()); });
}
BENCHMARK(transcriptJSON)->Unit(benchmark::kMillisecond);

void website(benchmark::State& state) {
    measure(state, "data/messages.js", [](const fs::path& folder) {
        writeWebArchive(conversation(), folder, {{folder}, {"en"}});
    });
}
BENCHMARK(website)->Unit(benchmark::kMillisecond);

void transcriptMarkdown(benchmark::State& state) {
    measure(state, "transcript.md", [](const fs::path& folder) {
        writeMarkdownTranscript(conversation(), folder / "transcript.md");
    });
}
BENCHMARK(transcriptMarkdown)->Unit(benchmark::kMillisecond);

void transcriptCSV(benchmark::State& state) {
    measure(state, "transcript.csv",
            [](const fs::path& folder) { writeCSVTranscript(conversation(), folder / "transcript.csv"); });
}
BENCHMARK(transcriptCSV)->Unit(benchmark::kMillisecond);

void scriptEscaper(benchmark::State& state) {
    std::string piece = jsonText(conversation().messages[9]);
    while (piece.size() < 65'536)
        piece += piece;
    std::string script;
    for (auto unused : state) {
        static_cast<void>(unused);
        ScriptEscaper escaper;
        escaper.append(script, piece);
        benchmark::DoNotOptimize(script.data());
        script.clear();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(piece.size()));
}
BENCHMARK(scriptEscaper);

} // namespace
} // namespace quillbook

BENCHMARK_MAIN();
