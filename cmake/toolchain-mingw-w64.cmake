# SPDX-License-Identifier: GPL-3.0-or-later

# Windows x86-64, built on Linux. QT_WINDOWS_DIR (environment) names the folder of a static Qt 5.15
# for Windows with host tools that run here; packaging/windows/build-qt.sh makes one.

set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(tessaport_target x86_64-w64-mingw32)
set(CMAKE_CXX_COMPILER ${tessaport_target}-g++-posix)
set(CMAKE_RC_COMPILER ${tessaport_target}-windres)

# Nothing but the system's own libraries may be missing on the machine the program is copied to.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")

# Kept, so that later builds in the same folder need no environment.
if(NOT "$ENV{QT_WINDOWS_DIR}" STREQUAL "")
    file(REAL_PATH "$ENV{QT_WINDOWS_DIR}" tessaport_qt EXPAND_TILDE)
    set(TESSAPORT_QT_WINDOWS ${tessaport_qt} CACHE PATH "Folder of Qt for Windows" FORCE)
endif()
if(NOT EXISTS "${TESSAPORT_QT_WINDOWS}/lib/cmake/Qt5/Qt5Config.cmake")
    message(FATAL_ERROR "QT_WINDOWS_DIR has to name the folder of Qt for Windows; "
        "packaging/windows/build-qt.sh FOLDER builds it, once.")
endif()
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES TESSAPORT_QT_WINDOWS)

set(CMAKE_FIND_ROOT_PATH ${TESSAPORT_QT_WINDOWS} /usr/${tessaport_target})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Tests run under Wine.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../tests/windows/wine-run)
