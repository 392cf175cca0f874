# Makes 64-bit Windows programs on Debian, with MinGW-w64 and POSIX threads, and runs them in Wine.
# TRVFILES_WINDOWS_QT may say where a Qt for them stands; otherwise scripts/windows/qt builds one.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

if(NOT DEFINED TRVFILES_WINDOWS_QT)
  execute_process(COMMAND "${CMAKE_CURRENT_LIST_DIR}/../scripts/windows/qt"
    OUTPUT_VARIABLE qt OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  set(TRVFILES_WINDOWS_QT "${qt}" CACHE PATH "Qt for Windows")
endif()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES TRVFILES_WINDOWS_QT)

set(triple x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${triple}-gcc-posix)
set(CMAKE_CXX_COMPILER ${triple}-g++-posix)
set(CMAKE_RC_COMPILER ${triple}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${triple} ${TRVFILES_WINDOWS_QT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/../scripts/windows/wine" run)
