#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>

/// What libFuzzer calls with every input it makes, and the ordinary test run with every file of the corpus.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace quillbook::fuzz {

/// Stops the program, in every kind of build, when what must hold for any input does not.
inline void require(bool holds, const char* claim) {
    if (holds) return;
    std::cerr << "does not hold: " << claim << std::endl;
    std::abort();
}

} // namespace quillbook::fuzz
