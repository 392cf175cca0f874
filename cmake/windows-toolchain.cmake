# Builds 64-bit Windows programs on Debian with MinGW-w64, POSIX threads and the Qt of
# scripts/windows/qt. Runs them in Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

get_property(trying GLOBAL PROPERTY IN_TRY_COMPILE)
if(NOT trying)
  execute_process(COMMAND "${CMAKE_CURRENT_LIST_DIR}/../scripts/windows/qt"
    OUTPUT_VARIABLE qt OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  # After a new build of Qt the cached paths still lead to the earlier one.
  if(NOT qt STREQUAL TRVFILES_WINDOWS_QT)
    foreach(found IN ITEMS Qt5_DIR Qt5Core_DIR Qt5Xml_DIR)
      unset(${found} CACHE)
    endforeach()
    set(TRVFILES_WINDOWS_QT "${qt}" CACHE INTERNAL "Qt for Windows")
  endif()
endif()

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
