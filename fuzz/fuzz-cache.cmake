# Initial cache of the fuzzing build:
#   cmake -C fuzz/fuzz-cache.cmake -S . -B build-fuzz && cmake --build build-fuzz --target fuzzers
# The project's own code is instrumented for coverage (fuzzer-no-link) and built
# with AddressSanitizer and UndefinedBehaviorSanitizer; only the fuzz executables
# link libFuzzer's driver. Debian's Qt stays uninstrumented.
set(CMAKE_C_COMPILER clang CACHE STRING "")
set(CMAKE_CXX_COMPILER clang++ CACHE STRING "")
set(CMAKE_BUILD_TYPE Debug CACHE STRING "")
set(CMAKE_C_FLAGS "-O1 -fsanitize=fuzzer-no-link" CACHE STRING "")
set(CMAKE_CXX_FLAGS "-O1 -fsanitize=fuzzer-no-link" CACHE STRING "")
set(DIALIX_SANITIZE "address,undefined" CACHE STRING "")
set(DIALIX_FUZZ ON CACHE BOOL "")
set(DIALIX_BUILD_TESTS OFF CACHE BOOL "")
set(DIALIX_BUILD_BENCH OFF CACHE BOOL "")
