"""The wheel and the NuGet package hold what they need, and are made again to the same bytes.
usage: packages_test.py REPOSITORY LIBRARY"""
import base64
import csv
import hashlib
import json
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree
import zipfile

REPOSITORY, LIBRARY = pathlib.Path(sys.argv[1]), sys.argv[2]
del sys.argv[1:]


class Packages(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def pack(self, kind, *arguments):
        """What is in the package, by name."""
        first, second = (pathlib.Path(subprocess.check_output(
            [sys.executable, REPOSITORY / 'packaging/pack.py', kind, self.folder / name, *arguments],
            text=True).strip()) for name in ('first', 'second'))
        self.assertTrue(first.read_bytes() == second.read_bytes())
        with zipfile.ZipFile(first) as archive:
            self.assertEqual({entry.date_time[0] for entry in archive.infolist()}, {1980})
            return {name: archive.read(name) for name in archive.namelist()}

    def test_wheel(self):
        files = self.pack('wheel', LIBRARY, 'linux_x86_64')
        record = next(name for name in files if name.endswith('/RECORD'))
        recorded = {name: digest for name, digest, _ in csv.reader(files[record].decode().split())}
        self.assertEqual(recorded, {name: '' if name == record else 'sha256=' + base64.
                                    urlsafe_b64encode(hashlib.sha256(data).digest()).
                                    decode().rstrip('=') for name, data in files.items()})
        self.assertIn('qzsvggen/py.typed', files)
        port = json.loads((REPOSITORY / 'packaging/vcpkg/qzsvggen/vcpkg.json').read_text('utf-8'))
        self.assertIn(f'qzsvggen-{port["version"]}.dist-info/METADATA', files)
        with zipfile.ZipFile(next(self.folder.glob('first/*.whl'))) as wheel:
            wheel.extractall(self.folder / 'site')
        result = subprocess.check_output(
            [sys.executable, '-c', 'import qzsvggen; print(qzsvggen.version())'],
            env={'PYTHONPATH': self.folder / 'site'}, text=True)
        self.assertEqual(result, '100\n')

    def test_nupkg(self):
        installed = self.folder / 'installed'
        for name in ('bin/qzsvggen.dll', 'lib/qzsvggen.lib', 'lib/libqzsvggen.so'):
            (installed / name).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(LIBRARY, installed / name)
        files = self.pack('nupkg', *(f'{runtime}={installed}' for runtime in
                                     ('win-x64', 'win-x86', 'linux-x64')))
        self.assertNotIn(b'@', files['qzsvggen.nuspec'])
        types = files['[Content_Types].xml'].decode() + 'Extension="xml"'
        for name, data in files.items():
            if pathlib.PurePath(name).suffix in ('.xml', '.rels', '.nuspec', '.targets'):
                xml.etree.ElementTree.fromstring(data)
            self.assertTrue(f'Extension="{name.rsplit(".")[-1]}"' in types
                            or f'PartName="/{name}"' in types, name)
        self.check_targets(files)

    def check_targets(self, files):
        """Whatever the build files name is in the package."""
        for name in ('build/qzsvggen.targets', 'build/native/qzsvggen.targets'):
            named = re.findall(r'\$\(MSBuildThisFileDirectory\)([^;"<]*)', files[name].decode())
            for path in named:
                for runtime in ('win-x64', 'win-x86'):
                    parts = path.replace('$(QzsvggenRuntime)', runtime).replace('\\', '/')
                    place = pathlib.PurePosixPath(name).parent
                    for part in parts.split('/'):
                        place = place.parent if part == '..' else place / part
                    self.assertTrue(any(pathlib.PurePath(each).match(str(place)) or
                                        each.startswith(f'{place}/') for each in files), place)

    def test_conan(self):
        """What the recipe exports can be configured."""
        recipe = (REPOSITORY / 'packaging/conan/conanfile.py').read_text('utf-8')
        compile(recipe, 'conanfile.py', 'exec')
        patterns = re.search(r'for pattern in \((.*?)\):', recipe, re.DOTALL).group(1)
        for pattern in re.findall("'(.*?)'", patterns):
            source, target = (root / pattern.removesuffix('/*') for root in
                              (REPOSITORY, self.folder / 'source'))
            if pattern.endswith('/*'):
                shutil.copytree(source, target)
            else:
                target.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(source, target)
        subprocess.run(['cmake', '-S', self.folder / 'source', '-B', self.folder / 'build',
                        '-DQZSVGGEN_DEVELOPER=OFF'], check=True, stdout=subprocess.DEVNULL)


unittest.main()
