# quillbook_room(NAME SOURCES file… [LINKS target…] [PRIVATE_LINKS target…] [PRECOMPILES header…])
# One library of the house: warnings are errors, and the project's root is the one include folder. PRECOMPILES is for a room whose
# compile options differ from those of the others, or with other headers that take long.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

get_filename_component(QUILLBOOK_ROOT ${CMAKE_CURRENT_LIST_DIR}/.. ABSOLUTE)
add_library(quillbook_settings INTERFACE)
target_include_directories(quillbook_settings INTERFACE ${QUILLBOOK_ROOT})
target_compile_options(
  quillbook_settings
  INTERFACE -Wall -Wextra -Wpedantic -Werror -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Wcast-align
            -Woverloaded-virtual -Wimplicit-fallthrough -Wnull-dereference
            # Designated initializers leave the fields they do not name at their defaults, on purpose.
            -Wno-missing-field-initializers)
target_compile_definitions(quillbook_settings INTERFACE _FILE_OFFSET_BITS=64)
if(QUILLBOOK_SANITIZERS)
  target_compile_options(
    quillbook_settings INTERFACE -fsanitize=${QUILLBOOK_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(quillbook_settings INTERFACE -fsanitize=${QUILLBOOK_SANITIZERS})
endif()
if(QUILLBOOK_FUZZ)
  target_compile_options(quillbook_settings INTERFACE -fsanitize=fuzzer-no-link)
endif()

function(quillbook_room name)
  cmake_parse_arguments(ROOM "" "" "SOURCES;LINKS;PRIVATE_LINKS;PRECOMPILES" ${ARGN})
  add_library(${name} STATIC ${ROOM_SOURCES})
  target_link_libraries(${name} PUBLIC quillbook_settings ${ROOM_LINKS} PRIVATE ${ROOM_PRIVATE_LINKS})
  quillbook_precompile(${name} quillbook_core_text ${ROOM_PRECOMPILES})
endfunction()

# What an installation has in "share/quillbook" is made here (resources/Web/).
set(QUILLBOOK_RESOURCES ${CMAKE_BINARY_DIR}/delivered)

# A program finds its resources in "share/quillbook" beside its folder (platform/ResourceFolders.h). For programs of the
# current folder, run from the build tree, that is a link to what the build made: no program carries the path of the tree.
function(quillbook_link_resources)
  get_filename_component(beside ${CMAKE_CURRENT_BINARY_DIR} DIRECTORY)
  file(MAKE_DIRECTORY ${beside}/share)
  file(CREATE_LINK ${QUILLBOOK_RESOURCES} ${beside}/share/quillbook SYMBOLIC)
endfunction()

function(quillbook_program name)
  cmake_parse_arguments(PROGRAM "" "" "SOURCES;LINKS" ${ARGN})
  quillbook_link_resources()
  add_executable(${name} ${PROGRAM_SOURCES})
  add_dependencies(${name} quillbook_web)
  target_link_libraries(${name} PRIVATE quillbook_settings ${PROGRAM_LINKS})
endfunction()
