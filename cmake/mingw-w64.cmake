# Toolchain: Windows programs for CMAKE_SYSTEM_PROCESSOR (x86_64 or i686) from Linux, which run under
# Wine. The compiler variant with POSIX threads is the one whose standard library has std::thread.
set(CMAKE_SYSTEM_NAME Windows)
if(NOT CMAKE_SYSTEM_PROCESSOR)
  set(CMAKE_SYSTEM_PROCESSOR x86_64)
endif()
set(machine ${CMAKE_SYSTEM_PROCESSOR}-w64-mingw32)
set(CMAKE_C_COMPILER ${machine}-gcc-posix)
set(CMAKE_CXX_COMPILER ${machine}-g++-posix)
set(CMAKE_RC_COMPILER ${machine}-windres)
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
include(${CMAKE_CURRENT_LIST_DIR}/cross.cmake)

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/wine.sh ${CMAKE_BINARY_DIR}/wine)
