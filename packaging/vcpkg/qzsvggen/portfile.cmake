# An overlay port that lies in the library's own repository, and builds what it lies in.
get_filename_component(SOURCE_PATH "${CMAKE_CURRENT_LIST_DIR}/../../.." ABSOLUTE)

vcpkg_cmake_configure(SOURCE_PATH "${SOURCE_PATH}" OPTIONS -DQZSVGGEN_DEVELOPER=OFF)
vcpkg_cmake_install()
vcpkg_cmake_config_fixup(PACKAGE_NAME qzsvggen CONFIG_PATH lib/cmake/qzsvggen)
vcpkg_fixup_pkgconfig()
vcpkg_copy_pdbs()

# Headers once, and no documents.
file(REMOVE_RECURSE "${CURRENT_PACKAGES_DIR}/debug/include" "${CURRENT_PACKAGES_DIR}/debug/share"
  "${CURRENT_PACKAGES_DIR}/share/doc")
if(VCPKG_TARGET_IS_WINDOWS)
  foreach(name docs examples notices README.md CHANGELOG.md SECURITY.md LICENSE.txt)
    file(REMOVE_RECURSE "${CURRENT_PACKAGES_DIR}/${name}" "${CURRENT_PACKAGES_DIR}/debug/${name}")
  endforeach()
endif()
vcpkg_install_copyright(FILE_LIST "${SOURCE_PATH}/LICENSE")
