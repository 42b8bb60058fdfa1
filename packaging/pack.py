#!/usr/bin/env python3
"""Packs a built library for Python (a wheel) or for .NET and C++ on Windows (a NuGet package).

usage: pack.py wheel OUTPUT LIBRARY PLATFORM
       pack.py nupkg OUTPUT RUNTIME=FOLDER...

PLATFORM is the wheel's tag (linux_x86_64, win_amd64, win32), RUNTIME that of .NET (win-x64, win-x86,
linux-x64), FOLDER an installed library. The notices of the runtimes inside a DLL are taken along
from where it is installed. The same input gives the same bytes.
"""
import base64
import hashlib
import pathlib
import re
import sys
import tomllib
import zipfile

REPOSITORY = pathlib.Path(__file__).resolve().parent.parent
PYTHON, NUGET = REPOSITORY / 'packaging/python', REPOSITORY / 'packaging/nuget'


def version():
    header = (REPOSITORY / 'include/qzsvggen/qzsvggen.h').read_text('utf-8')
    return '.'.join(re.search(rf'#define QZSVGGEN_VERSION_{part} (\d+)', header).group(1)
                    for part in ('MAJOR', 'MINOR', 'PATCH'))


def archive(path, files):
    """A zip of (name, bytes), each with the first date that zip files know."""
    with zipfile.ZipFile(path, 'w') as out:
        for name, data in files:
            entry = zipfile.ZipInfo(name)
            entry.external_attr = 0o644 << 16
            out.writestr(entry, data, zipfile.ZIP_DEFLATED)
    return path


def wheel_files(library, platform):
    name = 'qzsvggen.dll' if platform.startswith('win') else 'libqzsvggen.so'
    for path in [*sorted((PYTHON / 'qzsvggen').glob('*.py')), PYTHON / 'qzsvggen/py.typed']:
        yield f'qzsvggen/{path.name}', path.read_bytes()
    yield f'qzsvggen/{name}', pathlib.Path(library).read_bytes()
    project = tomllib.loads((PYTHON / 'pyproject.toml').read_text('utf-8'))['project']
    information = f'qzsvggen-{version()}.dist-info'
    yield f'{information}/LICENSE', (REPOSITORY / 'LICENSE').read_bytes()
    for notice in sorted(pathlib.Path(library).parent.parent.glob('notices/*.txt')):
        yield f'{information}/notices/{notice.name}', notice.read_bytes()
    yield f'{information}/METADATA', f"""Metadata-Version: 2.1
Name: {project['name']}
Version: {version()}
Summary: {project['description']}
License: {project['license']['text']}
Requires-Python: {project['requires-python']}
Description-Content-Type: text/markdown

{(PYTHON / project['readme']).read_text('utf-8')}""".encode()
    yield f'{information}/WHEEL', f"""Wheel-Version: 1.0
Generator: qzsvggen
Root-Is-Purelib: false
Tag: py3-none-{platform}
""".encode()


def make_wheel(output, library, platform):
    files = list(wheel_files(library, platform))
    record = f'qzsvggen-{version()}.dist-info/RECORD'
    lines = [f'{name},sha256={digest(data)},{len(data)}\n' for name, data in files]
    files.append((record, ''.join([*lines, f'{record},,\n']).encode()))
    return archive(output / f'qzsvggen-{version()}-py3-none-{platform}.whl', files)


def digest(data):
    return base64.urlsafe_b64encode(hashlib.sha256(data).digest()).rstrip(b'=').decode()


def nuget_paths(runtimes):
    """Where each file lies in the package, and where it is taken from."""
    for path in sorted(path for path in NUGET.rglob('*') if path.is_file()):
        yield path.relative_to(NUGET).as_posix(), path
    yield 'LICENSE', REPOSITORY / 'LICENSE'
    for header in sorted((REPOSITORY / 'include/qzsvggen').iterdir()):
        yield f'build/native/include/qzsvggen/{header.name}', header
    for runtime, folder in runtimes:
        if runtime.startswith('linux'):
            yield f'runtimes/{runtime}/native/libqzsvggen.so', folder / 'lib/libqzsvggen.so'
            continue
        yield f'runtimes/{runtime}/native/qzsvggen.dll', folder / 'bin/qzsvggen.dll'
        yield f'build/native/lib/{runtime}/qzsvggen.lib', folder / 'lib/qzsvggen.lib'
        for notice in sorted((folder / 'notices').glob('*.txt')):
            yield f'notices/{runtime}/{notice.name}', notice


def make_nupkg(output, *runtimes):
    pairs = [each.split('=', 1) for each in runtimes]
    files = [(name, path.read_bytes()) for name, path in
             nuget_paths([(runtime, pathlib.Path(folder)) for runtime, folder in pairs])]
    files = [(name, data.replace(b'@VERSION@', version().encode()) if name.endswith('.nuspec') else
              data) for name, data in files]
    return archive(output / f'qzsvggen.{version()}.nupkg', files)


def main():
    makers = {'wheel': (2, make_wheel), 'nupkg': (1, make_nupkg)}
    kind, output, *arguments = sys.argv[1:] if len(sys.argv) > 2 else ('', '')
    if kind not in makers or len(arguments) < makers[kind][0]:
        sys.exit(__doc__)
    pathlib.Path(output).mkdir(parents=True, exist_ok=True)
    try:
        print(makers[kind][1](pathlib.Path(output), *arguments))
    except OSError as error:
        sys.exit(f'pack.py: {error}')


if __name__ == '__main__':
    main()
