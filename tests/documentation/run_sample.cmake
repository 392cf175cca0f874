# Runs a sample in DIRECTORY and compares its output with the page. Called with -P and -DPROGRAM,
# -DDIRECTORY, -DPROJECT, -DINSTALLATION, -DEXPECTED. PROJECT is DIRECTORY as the program names it.

set(ENV{TRVHOME} "${INSTALLATION}")
foreach(variable IN ITEMS TRV_TRVFILES_VERBOSE ENVPATH CFGPATH SPINDLE_LIMIT)
  unset(ENV{${variable}})
endforeach()
execute_process(COMMAND ${PROGRAM} "${PROJECT}" WORKING_DIRECTORY "${DIRECTORY}"
  OUTPUT_VARIABLE printed ERROR_VARIABLE complaint RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "The sample ends with ${status}:\n${complaint}")
endif()
# The page shows the paths of a system that separates by "/", in an installation at /opt/shop.
string(REPLACE "\r\n" "\n" printed "${printed}")
string(REPLACE "\\" "/" printed "${printed}")
string(REPLACE "${INSTALLATION}" "/opt/shop" printed "${printed}")
file(READ "${EXPECTED}" expected)
if(NOT printed STREQUAL expected)
  message(FATAL_ERROR "The page shows:\n${expected}\nThe sample prints:\n${printed}")
endif()
