# Reads the newest section of CHANGELOG.md: "## 1.2.0 (2027-03-01)", or "## Unreleased" with the changes since. An unreleased state
# is told as a development release of the project's version, dated by the build (SOURCE_DATE_EPOCH where that is set).
# Sets release_version, release_date, release_type and release_changes, a list's items in AppStream's markup.
file(READ ${QUILLBOOK_ROOT}/CHANGELOG.md changes)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${QUILLBOOK_ROOT}/CHANGELOG.md)

string(REGEX MATCH "\n## ([^\n]+)\n" found "${changes}")
set(heading "${CMAKE_MATCH_1}")
string(FIND "${changes}" "${found}" start)
string(LENGTH "${found}" length)
math(EXPR start "${start} + ${length}")
string(SUBSTRING "${changes}" ${start} -1 changes)
string(FIND "${changes}" "\n## " end)
string(SUBSTRING "${changes}" 0 ${end} changes)

if(heading MATCHES "^([0-9][0-9.]*) \\(([0-9][0-9][0-9][0-9]-[0-9][0-9]-[0-9][0-9])\\)$")
  set(release_version ${CMAKE_MATCH_1})
  set(release_date ${CMAKE_MATCH_2})
  set(release_type stable)
elseif(heading STREQUAL "Unreleased")
  set(release_version ${PROJECT_VERSION})
  string(TIMESTAMP release_date "%Y-%m-%d" UTC)
  set(release_type development)
else()
  message(FATAL_ERROR "CHANGELOG.md opens with \"${heading}\", which is neither a version with its date nor \"Unreleased\".")
endif()

string(REPLACE "&" "&amp;" changes "${changes}")
string(REPLACE "<" "&lt;" changes "${changes}")
string(REPLACE ">" "&gt;" changes "${changes}")
string(REPLACE "\n  " " " changes "${changes}")
string(STRIP "${changes}" changes)
string(REGEX REPLACE "\n+- ([^\n]+)" "\n          <li>\\1</li>" release_changes "\n${changes}")
string(SUBSTRING "${release_changes}" 1 -1 release_changes)
