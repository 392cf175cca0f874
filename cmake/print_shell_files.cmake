# cmake -DCOMMAND=PROGRAM -DOUTPUT=DIR -P print_shell_files.cmake
#
# Writes the manual page and the completion scripts of the command, as it prints them, into OUTPUT.
# The names are those that are installed.

# The sanitizers judge the tests. Here their reports would only stop the build.
set(ENV{ASAN_OPTIONS} detect_leaks=0)
set(ENV{TSAN_OPTIONS} report_bugs=0)

function(print_to file)
  cmake_path(GET file PARENT_PATH directory)
  file(MAKE_DIRECTORY "${OUTPUT}/${directory}")
  execute_process(COMMAND "${COMMAND}" ${ARGN} OUTPUT_VARIABLE text COMMAND_ERROR_IS_FATAL ANY)
  file(WRITE "${OUTPUT}/${file}" "${text}")
endfunction()

print_to(trvfiles.1 manual)
print_to(bash/trvfiles completion bash)
print_to(zsh/_trvfiles completion zsh)
print_to(fish/trvfiles.fish completion fish)
