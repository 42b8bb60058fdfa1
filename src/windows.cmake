# The DLL: its exports and version resource, and beside it an import library for Microsoft's linker.
configure_file(version.rc.in version.rc @ONLY)
target_sources(qzsvggen PRIVATE ${QZSVGGEN_DEF} ${CMAKE_CURRENT_BINARY_DIR}/version.rc)
set_target_properties(qzsvggen PROPERTIES PREFIX "")

if(MINGW)
  # No other DLL than the system's is needed, and the same sources give the same bytes.
  target_link_options(qzsvggen PRIVATE -static "LINKER:--no-insert-timestamp")

  set(QZSVGGEN_MICROSOFT_LIBRARY ${CMAKE_CURRENT_BINARY_DIR}/qzsvggen.lib)
  find_program(LLVM_DLLTOOL NAMES llvm-dlltool llvm-dlltool-18 llvm-dlltool-14 REQUIRED)
  set(llvm_machine $<IF:$<EQUAL:${CMAKE_SIZEOF_VOID_P},4>,i386,i386:x86-64>)
  add_custom_command(OUTPUT ${QZSVGGEN_MICROSOFT_LIBRARY} DEPENDS ${QZSVGGEN_DEF} VERBATIM
    COMMAND ${LLVM_DLLTOOL} -m ${llvm_machine} -d ${QZSVGGEN_DEF} -l ${QZSVGGEN_MICROSOFT_LIBRARY})
  add_custom_target(qzsvggen-lib ALL DEPENDS ${QZSVGGEN_MICROSOFT_LIBRARY})
endif()
