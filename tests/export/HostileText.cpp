#include "tests/export/HostileText.h"

#include <iterator>

namespace quillbook::test {
namespace {

constexpr const char* pieces[] = {"=",
                                  "+",
                                  "-",
                                  "@",
                                  "\t",
                                  "\r",
                                  "\n",
                                  "\r\n",
                                  "\"",
                                  "\"\"",
                                  "'",
                                  ",",
                                  ";",
                                  " ",
                                  "a",
                                  "=1+1",
                                  "\\",
                                  "\\\\",
                                  "`",
                                  "*",
                                  "**",
                                  "_",
                                  "[",
                                  "]",
                                  "](x)",
                                  "#",
                                  "<",
                                  ">",
                                  "&",
                                  "&amp;",
                                  "</script>",
                                  "<!--",
                                  "{{TITLE}}",
                                  "\x7F",
                                  "\x01",
                                  "\x1F",
                                  "\u0301",
                                  "\u200D",
                                  "\u2028",
                                  "\u2029",
                                  "\u2027",
                                  "\u202A",
                                  "\uFEFF",
                                  "é",
                                  "\u00E9\u0301",
                                  "\U0001F469\u200D\U0001F469\u200D\U0001F467",
                                  "\U0001F1F3\U0001F1F4",
                                  "\u0600",
                                  "한",
                                  "नि",
                                  "\uFE0F",
                                  "\u00A0",
                                  "%",
                                  "\U0010FFFD"};

} // namespace

std::string HostileText::next(std::size_t most) {
    std::string text;
    for (std::size_t count = below(most + 1); count > 0; --count)
        text += pieces[below(std::size(pieces))];
    return text;
}

} // namespace quillbook::test
