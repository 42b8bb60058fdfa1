# Toolchain: Linux programs for CMAKE_SYSTEM_PROCESSOR, by Debian's cross compilers. QEMU runs them;
# those for 32-bit x86 the processor itself, with the libraries of the cross compiler.
set(CMAKE_SYSTEM_NAME Linux)
set(machine ${CMAKE_SYSTEM_PROCESSOR}-linux-gnu)
set(CMAKE_C_COMPILER ${machine}-gcc)
set(CMAKE_CXX_COMPILER ${machine}-g++)
include(${CMAKE_CURRENT_LIST_DIR}/cross.cmake)

if(CMAKE_SYSTEM_PROCESSOR STREQUAL i686)
  set(CMAKE_CROSSCOMPILING_EMULATOR
    /usr/${machine}/lib/ld-linux.so.2 --library-path /usr/${machine}/lib)
else()
  set(CMAKE_CROSSCOMPILING_EMULATOR qemu-${CMAKE_SYSTEM_PROCESSOR} -L /usr/${machine})
endif()
