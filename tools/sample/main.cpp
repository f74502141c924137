#include "core/records/DescribedError.h"
#include "tools/sample/SampleLibrary.h"
#include "tools/sample/SampleOptions.h"
#include "tools/writing/SampleError.h"

#include <cstdio>
#include <exception>
#include <string>
#include <vector>

int main(int argumentCount, char** argumentValues) {
    try {
        const std::vector<std::string> arguments(argumentValues + 1, argumentValues + argumentCount);
        const auto options = quillbook::sample::parseSampleOptions(arguments);
        const std::string words = options ? describe(quillbook::sample::writeSampleLibrary(*options))
                                          : quillbook::sample::sampleHelp();
        std::fputs(words.c_str(), stdout);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "quillbook-sample: %s\n", quillbook::describe(error).c_str());
        return 1;
    }
}
