# What tools and tests use, when they are built for another system: this machine's packages that
# are headers alone, and GoogleTest from its sources.
set(packages ${PROJECT_BINARY_DIR}/packages)
foreach(path include/nlohmann include/utf8cpp include/CLI share/cmake/nlohmann_json)
  get_filename_component(directory ${packages}/${path} DIRECTORY)
  file(MAKE_DIRECTORY ${directory})
  file(CREATE_LINK /usr/${path} ${packages}/${path} SYMBOLIC)
endforeach()
list(APPEND CMAKE_FIND_ROOT_PATH ${packages})

include(FetchContent)
set(BUILD_GMOCK OFF)
set(INSTALL_GTEST OFF)
FetchContent_Declare(GTest SOURCE_DIR /usr/src/googletest OVERRIDE_FIND_PACKAGE)
