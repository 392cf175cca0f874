# Compares what the shared library exports with tests/exported_symbols.txt, or writes that list.
# Called with -P and -DLIBRARY, -DNM, -DOBJDUMP, -DCXXFILT, -DLIST, and -DWRITE=ON to write.

if(LIBRARY MATCHES "\\.dll$")
  execute_process(COMMAND ${OBJDUMP} -p ${LIBRARY} OUTPUT_VARIABLE names COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX REPLACE ".*\\[Ordinal/Name Pointer\\] Table" "" names "${names}")
  # Brackets have a meaning in lists.
  string(REGEX REPLACE "[][]" " " names "${names}")
  string(REGEX MATCHALL "\t +[0-9]+  [^ \n]+\n" names "${names}")
else()
  execute_process(COMMAND ${NM} --dynamic --defined-only --format=posix ${LIBRARY}
    OUTPUT_VARIABLE names COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCHALL "[^\n]+\n" names "${names}")
endif()

set(mangled "")
foreach(name IN LISTS names)
  string(REGEX REPLACE "^\t +[0-9]+ +" "" name "${name}")
  string(REGEX REPLACE "[ \n].*" "" name "${name}")
  # Only some systems export the name of a type beside its description.
  if(NOT name MATCHES "^_ZTS")
    string(APPEND mangled "${name}\n")
  endif()
endforeach()
set(input "${CMAKE_CURRENT_BINARY_DIR}/exported_symbols_mangled.txt")
file(WRITE "${input}" "${mangled}")
execute_process(COMMAND ${CXXFILT} INPUT_FILE "${input}"
  OUTPUT_VARIABLE exported COMMAND_ERROR_IS_FATAL ANY)

# The same on every system: how the 64-bit types and FILE are called differs.
string(REGEX REPLACE "long long" "long" exported "${exported}")
string(REGEX REPLACE "([0-9])ull" "\\1ul" exported "${exported}")
string(REGEX REPLACE "_iobuf|_IO_FILE" "FILE" exported "${exported}")
string(REGEX MATCHALL "[^\n]+" exported "${exported}")
list(REMOVE_DUPLICATES exported)
list(SORT exported)
list(JOIN exported "\n" exported)
string(APPEND exported "\n")

if(WRITE)
  file(WRITE "${LIST}" "${exported}")
  return()
endif()
file(READ "${LIST}" expected)
if(NOT exported STREQUAL expected)
  set(output "${CMAKE_CURRENT_BINARY_DIR}/exported_symbols.txt")
  file(WRITE "${output}" "${exported}")
  execute_process(COMMAND diff "${LIST}" "${output}")
  message(FATAL_ERROR "The library exports other symbols than ${LIST} says. If that is meant, "
    "build the target write_exported_symbols.")
endif()
