#include "tests/support/TemporaryFolder.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace quillbook::test {

TemporaryFolder::TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "quillbook-test-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    path_ = std::filesystem::canonical(name);
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::filesystem::path TemporaryFolder::write(std::string_view name, std::string_view contents) const {
    const std::filesystem::path file = path_ / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream stream(file, std::ios::binary | std::ios::trunc);
    stream.write(contents.data(), static_cast<std::streamsize>(contents.size()));
    if (!stream.flush()) throw std::runtime_error("could not write " + file.string());
    return file;
}

std::string readFile(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) throw std::runtime_error("could not open " + file.string());
    std::ostringstream contents;
    contents << stream.rdbuf();
    return std::move(contents).str();
}

} // namespace quillbook::test
