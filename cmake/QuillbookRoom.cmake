# quillbook_room(NAME SOURCES file… [LINKS target…] [PRIVATE_LINKS target…])
# One library of the house: warnings are errors, and the project's root is the one include folder.
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
  cmake_parse_arguments(ROOM "" "" "SOURCES;LINKS;PRIVATE_LINKS" ${ARGN})
  add_library(${name} STATIC ${ROOM_SOURCES})
  target_link_libraries(${name} PUBLIC quillbook_settings ${ROOM_LINKS} PRIVATE ${ROOM_PRIVATE_LINKS})
endfunction()

function(quillbook_program name)
  cmake_parse_arguments(PROGRAM "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${PROGRAM_SOURCES})
  target_link_libraries(${name} PRIVATE quillbook_settings ${PROGRAM_LINKS})
endfunction()
