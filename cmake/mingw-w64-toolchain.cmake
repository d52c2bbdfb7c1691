# Cross build for 64-bit Windows with Debian's mingw-w64 (-posix thread model:
# std::thread, std::mutex and std::future need it) against the Qt and hidapi
# that scripts/windows/toolchain.sh builds and caches. Programs run under Wine
# through scripts/windows/wine-run.sh, which ctest uses as the emulator.
#
#   cmake -S . -B build-windows -DCMAKE_TOOLCHAIN_FILE=cmake/mingw-w64-toolchain.cmake
#
# DIALIX_WINDOWS_TOOLCHAIN (cache or environment) names the toolchain directory;
# by default it is the one the script prints for its current versions and flags.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(_dialix_triplet x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${_dialix_triplet}-gcc-posix)
set(CMAKE_CXX_COMPILER ${_dialix_triplet}-g++-posix)
set(CMAKE_RC_COMPILER ${_dialix_triplet}-windres)

if(NOT DIALIX_WINDOWS_TOOLCHAIN)
    if(DEFINED ENV{DIALIX_WINDOWS_TOOLCHAIN})
        set(DIALIX_WINDOWS_TOOLCHAIN "$ENV{DIALIX_WINDOWS_TOOLCHAIN}")
    else()
        execute_process(
            COMMAND ${CMAKE_CURRENT_LIST_DIR}/../scripts/windows/toolchain.sh --dir
            OUTPUT_VARIABLE DIALIX_WINDOWS_TOOLCHAIN OUTPUT_STRIP_TRAILING_WHITESPACE)
    endif()
endif()
if(NOT EXISTS "${DIALIX_WINDOWS_TOOLCHAIN}/complete")
    message(FATAL_ERROR "No Windows toolchain in '${DIALIX_WINDOWS_TOOLCHAIN}': "
        "run scripts/windows/toolchain.sh first")
endif()
set(DIALIX_WINDOWS_TOOLCHAIN "${DIALIX_WINDOWS_TOOLCHAIN}" CACHE PATH
    "The Windows toolchain (scripts/windows/toolchain.sh)")
# try_compile projects see the same directory.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES DIALIX_WINDOWS_TOOLCHAIN)

set(CMAKE_FIND_ROOT_PATH
    /usr/${_dialix_triplet}
    ${DIALIX_WINDOWS_TOOLCHAIN}/qt
    ${DIALIX_WINDOWS_TOOLCHAIN}/hidapi)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(Qt5_DIR ${DIALIX_WINDOWS_TOOLCHAIN}/qt/lib/cmake/Qt5 CACHE PATH "")
# Qt's translation tools run on the build machine: Debian's own.
set(Qt5LinguistTools_DIR /usr/lib/x86_64-linux-gnu/cmake/Qt5LinguistTools CACHE PATH "")

# The mingw runtime DLLs that the programs need, from the -posix compilers.
set(DIALIX_MINGW_RUNTIME_DIRS
    /usr/lib/gcc/${_dialix_triplet}/12-posix
    /usr/${_dialix_triplet}/lib)

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/windows/wine-run.sh)
