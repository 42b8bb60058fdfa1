# What `cmake --install` puts where. Two components: the library, which a host ships, and
# development, which a host builds with; the tools and qzsvggen-pdf add theirs where they are built.
# Everything is found relative to where it lies.
include(CMakePackageConfigHelpers)
include(cmake/Documents.cmake)

set(package_directory ${CMAKE_INSTALL_LIBDIR}/cmake/qzsvggen)
install(TARGETS qzsvggen EXPORT qzsvggen
  RUNTIME COMPONENT library
  LIBRARY COMPONENT library NAMELINK_COMPONENT development
  ARCHIVE COMPONENT development)
install(EXPORT qzsvggen NAMESPACE qzsvggen:: FILE qzsvggen-targets.cmake
  DESTINATION ${package_directory} COMPONENT development)
write_basic_package_version_file(qzsvggen-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES cmake/qzsvggen-config.cmake ${PROJECT_BINARY_DIR}/qzsvggen-config-version.cmake
  DESTINATION ${package_directory} COMPONENT development)
install(DIRECTORY include/qzsvggen DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)

file(RELATIVE_PATH pc_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
get_target_property(type qzsvggen TYPE)
if(type STREQUAL "STATIC_LIBRARY")  # whose user links what it depends on
  list(TRANSFORM CMAKE_CXX_IMPLICIT_LINK_LIBRARIES PREPEND " -l" OUTPUT_VARIABLE pc_runtime)
  list(FILTER pc_runtime INCLUDE REGEX " -l(std)?c[+][+]|m$")
  list(JOIN pc_runtime "" pc_runtime)
endif()
configure_file(cmake/qzsvggen.pc.in qzsvggen.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/qzsvggen.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

set(examples examples/page.c examples/page.cpp examples/page.py examples/Page.cs examples/page.svg)
set(documents README.md CHANGELOG.md SECURITY.md docs/integration.md docs/dll-contract.md
  docs/viewer.md docs/performance.md docs/reliability.md docs/pdf.md docs/invoice.png docs/pdf.png
  docs/viewer.png docs/tools.png)
set(tool_documents docs/tools.md docs/recordings.md)
if(WIN32)
  install(FILES LICENSE DESTINATION . RENAME LICENSE.txt COMPONENT library)
  install(FILES ${examples} DESTINATION examples COMPONENT development)
  qzsvggen_install_documents(development . ${documents} ${tool_documents})
  install(FILES src/qzsvggen.def DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
else()
  set(doc ${CMAKE_INSTALL_DATADIR}/doc)
  set(library_package libqzsvggen${PROJECT_VERSION_MAJOR})
  install(FILES LICENSE DESTINATION ${doc}/${library_package} RENAME copyright COMPONENT library)
  install(FILES LICENSE DESTINATION ${doc}/libqzsvggen-dev RENAME copyright COMPONENT development)
  install(FILES ${examples} DESTINATION ${doc}/libqzsvggen-dev/examples COMPONENT development)
  qzsvggen_install_documents(development ${doc}/libqzsvggen-dev ${documents} ${tool_documents})
  # Where documents look for the header, as in the repository.
  file(CREATE_LINK ../../../include ${PROJECT_BINARY_DIR}/documents/include SYMBOLIC)
  install(FILES ${PROJECT_BINARY_DIR}/documents/include DESTINATION ${doc}/libqzsvggen-dev
    COMPONENT development)
endif()

if(QZSVGGEN_PACKAGED AND NOT WIN32 AND type STREQUAL "SHARED_LIBRARY")
  # There debuggers look for what belongs to /usr/lib.
  install(FILES $<TARGET_FILE:qzsvggen>.debug COMPONENT symbols
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/debug/usr/${CMAKE_INSTALL_LIBDIR})
  install(FILES LICENSE DESTINATION ${doc}/${library_package}-dbgsym RENAME copyright
    COMPONENT symbols)
endif()
if(MINGW AND type STREQUAL "SHARED_LIBRARY")
  install(FILES ${PROJECT_BINARY_DIR}/src/qzsvggen.lib DESTINATION ${CMAKE_INSTALL_LIBDIR}
    COMPONENT development)
  install(FILES $<TARGET_FILE:qzsvggen>.debug DESTINATION ${CMAKE_INSTALL_BINDIR}
    COMPONENT development)
  # The compiler's runtimes are inside the DLL. Their packages bring their notices.
  string(REPLACE _ - debian_processor ${CMAKE_SYSTEM_PROCESSOR})
  foreach(package gcc-mingw-w64-base mingw-w64-${debian_processor}-dev)
    install(FILES /usr/share/doc/${package}/copyright DESTINATION notices RENAME ${package}.txt
      COMPONENT library)
  endforeach()
endif()
