# Windows on x86, 32 bit: Debian's mingw-w64 with POSIX threads.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86)
set(triple i686-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../../tools/windows/wine32.sh)
# Doubles are computed as on every other machine, and callers of 32 bit need not align the stack.
set(CMAKE_CXX_FLAGS_INIT "-msse2 -mfpmath=sse -mstackrealign")
set(CMAKE_C_FLAGS_INIT "-msse2 -mfpmath=sse -mstackrealign")
