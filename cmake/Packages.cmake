# What `cpack` makes: -G TGZ, -G DEB (the library, a development package, the tools, where they are
# built, or qzsvggen-pdf) and, in a Windows build, -G ZIP.
string(TOLOWER ${CMAKE_SYSTEM_NAME} system)
set(CPACK_SYSTEM_NAME ${system}-${CMAKE_SYSTEM_PROCESSOR})
set(CPACK_PACKAGE_VENDOR "The qzsvggen authors")
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
  GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
if(NOT CPACK_COMPONENTS_ALL)
  set(CPACK_COMPONENTS_ALL library development)
  if(TARGET qzsvggen-program)
    list(APPEND CPACK_COMPONENTS_ALL tools)
  endif()
  if(QZSVGGEN_PACKAGED)
    list(APPEND CPACK_COMPONENTS_ALL symbols)
  endif()
endif()
if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_STRIP_FILES OFF)  # it has been stripped, and its symbols are a file of their own
else()
  set(CPACK_GENERATOR TGZ DEB)
endif()

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${CPACK_PACKAGE_VENDOR})
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/src)

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libqzsvggen${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "The shared library.")

set(same_major
  "${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} (>= ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})")
set(debian ${PROJECT_BINARY_DIR}/debian)
file(WRITE ${debian}/triggers "activate-noawait ldconfig\n")
file(WRITE ${debian}/shlibs "libqzsvggen ${PROJECT_VERSION_MAJOR} ${same_major}\n")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${debian}/triggers ${debian}/shlibs)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libqzsvggen-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
  "${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} (= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "The headers, what linkers need, and examples.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME qzsvggen-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS ${same_major})
set(CPACK_COMPONENT_TOOLS_DESCRIPTION "The program that records, checks, draws and reduces pages.")

set(CPACK_DEBIAN_SYMBOLS_PACKAGE_NAME ${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME}-dbgsym)
set(CPACK_DEBIAN_SYMBOLS_PACKAGE_SECTION debug)
set(CPACK_DEBIAN_SYMBOLS_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_SYMBOLS_PACKAGE_DEPENDS
  "${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} (= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_SYMBOLS_DESCRIPTION "The debug symbols of the shared library.")

set(CPACK_DEBIAN_PDF_PACKAGE_NAME qzsvggen-pdf)
set(CPACK_DEBIAN_PDF_PACKAGE_SECTION text)
set(CPACK_DEBIAN_PDF_PACKAGE_DEPENDS ${same_major})
set(CPACK_COMPONENT_PDF_DESCRIPTION
  "A host that draws any PDF as SVG pages.\nIt is linked with MuPDF and is under the AGPL.")

# The changelog in Debian's form, for each package.
find_program(GZIP gzip)
if(CPACK_GENERATOR MATCHES "DEB" AND GZIP)
  string(TIMESTAMP day "%a, %d %b %Y 00:00:00 +0000" UTC)  # that of SOURCE_DATE_EPOCH
  file(WRITE ${debian}/changelog "qzsvggen (${PROJECT_VERSION}) unstable; urgency=medium\n\n"
    "  * CHANGELOG.md in the development package says what is new.\n\n"
    " -- ${CPACK_PACKAGE_VENDOR} <>  ${day}\n")
  execute_process(COMMAND ${GZIP} -9nkf ${debian}/changelog COMMAND_ERROR_IS_FATAL ANY)
  foreach(component ${CPACK_COMPONENTS_ALL})
    string(TOUPPER ${component} name)
    install(FILES ${debian}/changelog.gz COMPONENT ${component}
      DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_${name}_PACKAGE_NAME})
  endforeach()
endif()
include(CPack)
