#include "tests/export/ParsedCSV.h"

#include "core/records/JSONReader.h"
#include "tests/support/TemporaryFolder.h"

#include <cstdlib>
#include <stdexcept>

namespace quillbook::test {
namespace {

constexpr const char* script = R"(import csv, json, sys
csv.field_size_limit(2**31 - 1)
with open(sys.argv[1], encoding="utf-8", newline="") as source:
    if source.read(1) != "\ufeff":
        sys.exit("no byte order mark")
    rows = list(csv.reader(source, strict=True))
with open(sys.argv[2], "w", encoding="ascii") as target:
    json.dump(rows, target)
)";

} // namespace

std::vector<std::vector<std::string>> rowsReadByPython(const std::filesystem::path& csv) {
    const TemporaryFolder folder;
    const auto program = folder.write("read.py", script);
    const auto result = folder / "rows.json";
    const std::string command =
        "python3 '" + program.string() + "' '" + csv.string() + "' '" + result.string() + "'";
    if (std::system(command.c_str()) != 0) throw std::runtime_error("python3 could not read the file");
    const JSONDocument document(readFile(result));
    std::vector<std::vector<std::string>> rows;
    for (const JSONValue& row : document.root().elements()) {
        std::vector<std::string>& fields = rows.emplace_back();
        for (const JSONValue& field : row.elements())
            fields.push_back(field.text());
    }
    return rows;
}

} // namespace quillbook::test
