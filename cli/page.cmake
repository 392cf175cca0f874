# Embeds the page of `trvfiles view` in the command.

# The compiler for Windows has no such files: those of the building machine are taken.
find_path(TRVFILES_THREE_DIRECTORY build/three.min.js PATHS /usr/share/javascript/three
  NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH DOC "The directory of three.js, of Debian's libjs-three")
find_file(TRVFILES_THREE_LICENSE copyright PATHS /usr/share/doc/libjs-three
  NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH DOC "The license notice of three.js")
if(TRVFILES_THREE_DIRECTORY AND TRVFILES_THREE_LICENSE)
  set(three "${TRVFILES_THREE_DIRECTORY}")
else()
  set(three "")
  message(STATUS "libjs-three is not installed: trvfiles view will write no pages")
endif()

include(${PROJECT_SOURCE_DIR}/cmake/page_sources.cmake)
set(viewer "${PROJECT_SOURCE_DIR}/viewer")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${viewer}/modules.txt")
find_page_sources("${viewer}")
set(sources ${page_styles} ${page_scripts} "${viewer}/page.html" "${viewer}/modules.txt")
if(three)
  find_three_sources("${three}")
  list(APPEND sources ${three_scripts} "${TRVFILES_THREE_LICENSE}")
endif()

set(page_parts "${CMAKE_CURRENT_BINARY_DIR}/page_parts.cpp")
set(embed "${PROJECT_SOURCE_DIR}/cmake/embed_page.cmake")
add_custom_command(OUTPUT "${page_parts}"
  COMMAND ${CMAKE_COMMAND} "-DVIEWER=${viewer}" "-DTHREE=${three}"
    "-DLICENSE=${TRVFILES_THREE_LICENSE}" "-DOUTPUT=${page_parts}" -P "${embed}"
  DEPENDS ${sources} "${embed}" "${PROJECT_SOURCE_DIR}/cmake/page_sources.cmake"
  COMMENT "Embedding the page of trvfiles view"
  VERBATIM)
# Clang warns of literals longer than 65,536 characters.
set_source_files_properties("${page_parts}" PROPERTIES COMPILE_OPTIONS -Wno-overlength-strings)
target_sources(trvfiles_cli PRIVATE "${page_parts}")
