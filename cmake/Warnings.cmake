# Where warnings are to stop a build, they do so with the compilers of the gate, those of Debian 12:
# others warn of other things.
set(QZSVGGEN_WERROR "")
if(QZSVGGEN_WARNINGS_AS_ERRORS AND
   "${CMAKE_CXX_COMPILER_ID} ${CMAKE_CXX_COMPILER_VERSION}" MATCHES "^(GNU 12|Clang 14)[.]")
  set(QZSVGGEN_WERROR -Werror)
endif()

# The warnings that every target of the project is built with; further arguments are options that
# change them for this target.
function(qzsvggen_warnings target)
  if(MSVC)
    target_compile_options(${target} PRIVATE /W4)
  else()
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
      -Wsign-conversion ${ARGN} ${QZSVGGEN_WERROR})
  endif()
endfunction()
