# The warnings that every target of the project is built with; further arguments are options that
# change them for this target.
function(qzsvggen_warnings target)
  if(MSVC)
    target_compile_options(${target} PRIVATE /W4 $<$<BOOL:${QZSVGGEN_WARNINGS_AS_ERRORS}>:/WX>)
  else()
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
      -Wsign-conversion ${ARGN} $<$<BOOL:${QZSVGGEN_WARNINGS_AS_ERRORS}>:-Werror>)
  endif()
endfunction()
