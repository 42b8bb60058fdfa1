# What all targets are built with to find faults while they run: the standard library's assertions,
# beside those of assert(), in a debug build, and sanitizers.
set(QZSVGGEN_SANITIZE "" CACHE STRING "Sanitizers, as -fsanitize= takes them")

if(PROJECT_IS_TOP_LEVEL)
  add_compile_definitions($<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)
endif()
if(QZSVGGEN_SANITIZE)
  add_compile_options(-fsanitize=${QZSVGGEN_SANITIZE} -fno-sanitize-recover=all
    -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${QZSVGGEN_SANITIZE})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")  # which takes what it has added for uninitialised
    add_compile_options(-Wno-maybe-uninitialized)
  endif()
endif()
