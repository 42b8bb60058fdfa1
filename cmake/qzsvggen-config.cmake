include(${CMAKE_CURRENT_LIST_DIR}/qzsvggen-targets.cmake)

# Microsoft's linker has an import library of its own.
if(MSVC)
  get_filename_component(qzsvggen_lib ${CMAKE_CURRENT_LIST_DIR}/../../qzsvggen.lib ABSOLUTE)
  set_target_properties(qzsvggen::qzsvggen PROPERTIES IMPORTED_IMPLIB_RELEASE ${qzsvggen_lib})
endif()
