import re

from conan import ConanFile
from conan.tools.build import check_min_cppstd
from conan.tools.cmake import CMake, CMakeToolchain, cmake_layout
from conan.tools.files import copy, load


class Qzsvggen(ConanFile):
    name = 'qzsvggen'
    description = 'Turns the drawing of a document page into SVG'
    license = 'MIT'
    package_type = 'library'
    settings = 'os', 'compiler', 'build_type', 'arch'
    options = {'shared': [True, False], 'fPIC': [True, False]}
    default_options = {'shared': True, 'fPIC': True}
    implements = ['auto_shared_fpic']

    def set_version(self):
        header = load(self, f'{self.recipe_folder}/../../include/qzsvggen/qzsvggen.h')
        self.version = '.'.join(re.search(rf'#define QZSVGGEN_VERSION_{part} (\d+)', header).group(1)
                                for part in ('MAJOR', 'MINOR', 'PATCH'))

    def export_sources(self):
        root = f'{self.recipe_folder}/../..'
        for pattern in ('CMakeLists.txt', 'LICENSE', 'README.md', 'CHANGELOG.md', 'SECURITY.md',
                        'cmake/*', 'docs/*', 'examples/*', 'include/*', 'src/*'):
            copy(self, pattern, root, self.export_sources_folder)

    def validate(self):
        check_min_cppstd(self, 20)

    def layout(self):
        cmake_layout(self)

    def generate(self):
        toolchain = CMakeToolchain(self)
        toolchain.cache_variables['QZSVGGEN_DEVELOPER'] = False
        toolchain.generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        CMake(self).install()
        copy(self, 'LICENSE', self.source_folder, f'{self.package_folder}/licenses')

    def package_info(self):
        self.cpp_info.libs = ['qzsvggen']
        self.cpp_info.set_property('cmake_file_name', 'qzsvggen')
        self.cpp_info.set_property('cmake_target_name', 'qzsvggen::qzsvggen')
        self.cpp_info.set_property('pkg_config_name', 'qzsvggen')
        if self.settings.os == 'Linux' and not self.options.shared:
            self.cpp_info.system_libs = ['stdc++', 'm']
