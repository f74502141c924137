# What most sources include is compiled once and not in each of them. A source still includes all that it uses: the presets
# "tsan" and "release" build without precompiled headers and find what is missing.
set(QUILLBOOK_STANDARD_HEADERS
    <algorithm>
    <array>
    <chrono>
    <cstdint>
    <filesystem>
    <functional>
    <map>
    <memory>
    <mutex>
    <optional>
    <set>
    <span>
    <sstream>
    <stop_token>
    <string>
    <string_view>
    <unordered_map>
    <utility>
    <variant>
    <vector>
    <fmt/format.h>)

# A compiler cache takes precompiled headers only when it is told to: see "Precompiled headers" in ccache's manual.
if(NOT CMAKE_DISABLE_PRECOMPILE_HEADERS)
  add_compile_options("$<$<COMPILE_LANG_AND_ID:CXX,GNU>:-fpch-preprocess>"
                      "$<$<COMPILE_LANG_AND_ID:CXX,Clang>:SHELL:-Xclang -fno-pch-timestamp>")
  if(CMAKE_CXX_COMPILER_LAUNCHER MATCHES "ccache$")
    list(PREPEND CMAKE_CXX_COMPILER_LAUNCHER env CCACHE_SLOPPINESS=pch_defines,time_macros)
  endif()
endif()

# quillbook_precompile(TARGET MODEL [header…]): the target takes over MODEL's precompiled headers, which its own compile options
# must equal; with headers of its own it precompiles for itself.
function(quillbook_precompile target model)
  if(ARGN OR target STREQUAL model)
    target_precompile_headers(${target} PRIVATE ${QUILLBOOK_STANDARD_HEADERS} ${ARGN})
  else()
    target_precompile_headers(${target} REUSE_FROM ${model})
  endif()
endfunction()
