#include "fuzz/Harness.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <gmock/gmock.h>

namespace quillbook {
namespace {

std::filesystem::path corpusFolder() {
    const char* source = std::getenv("QUILLBOOK_SOURCE");
    return std::filesystem::path(source == nullptr ? "." : source) / "fuzz" / "corpus" / QUILLBOOK_CORPUS;
}

std::vector<std::uint8_t> contentsOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

/// A harness stops the program where a file breaks one of its claims.
TEST(Corpus, HoldsFilesThatAllPassTheHarness) {
    ASSERT_TRUE(std::filesystem::is_directory(corpusFolder())) << corpusFolder();
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(corpusFolder())) {
        SCOPED_TRACE(entry.path().filename());
        const auto contents = contentsOf(entry.path());
        EXPECT_EQ(LLVMFuzzerTestOneInput(contents.data(), contents.size()), 0);
        ++count;
    }
    EXPECT_GE(count, 20);
}

} // namespace
} // namespace quillbook
