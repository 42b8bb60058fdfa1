# What `cmake --install` puts where. Two components: the library, which a host ships, and
# development, which a host builds with. Everything is found relative to where it lies.
include(CMakePackageConfigHelpers)

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
set(documents FILES_MATCHING PATTERN integration.md PATTERN dll-contract.md)
if(WIN32)
  install(FILES LICENSE DESTINATION . RENAME LICENSE.txt COMPONENT library)
  install(FILES ${examples} DESTINATION examples COMPONENT development)
  install(DIRECTORY docs DESTINATION . COMPONENT development ${documents})
  install(FILES src/qzsvggen.def DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
else()
  set(doc ${CMAKE_INSTALL_DATADIR}/doc)
  install(FILES LICENSE DESTINATION ${doc}/libqzsvggen${PROJECT_VERSION_MAJOR} RENAME copyright
    COMPONENT library)
  install(FILES LICENSE DESTINATION ${doc}/libqzsvggen-dev RENAME copyright COMPONENT development)
  install(FILES ${examples} DESTINATION ${doc}/libqzsvggen-dev/examples COMPONENT development)
  install(DIRECTORY docs/ DESTINATION ${doc}/libqzsvggen-dev COMPONENT development ${documents})
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
