# The DLLs that a program needs on Windows: those of Qt, and those of the compiler if it is MinGW.

foreach(target IN ITEMS Qt5::Core Qt5::Xml)
  get_target_property(dll ${target} IMPORTED_LOCATION_RELEASE)
  list(APPEND trv_runtime_dlls "${dll}")
endforeach()
if(MINGW)
  foreach(name IN ITEMS libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}
      OUTPUT_VARIABLE dll OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    list(APPEND trv_runtime_dlls "${dll}")
  endforeach()
endif()

# All programs of a build are in one directory with the DLLs, so each starts without a search path.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
file(COPY ${trv_runtime_dlls} DESTINATION "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
install(FILES ${trv_runtime_dlls} DESTINATION ${CMAKE_INSTALL_BINDIR})
