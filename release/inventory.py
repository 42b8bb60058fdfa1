#!/usr/bin/env python3
"""Writes what is inside of archives as a CycloneDX list to the standard output. The versions are
those of the packages that this machine has, on which the archives have been made.

usage: inventory.py VERSION ARCHIVE...
"""
import hashlib
import json
import os
import subprocess
import sys
import time
from pathlib import Path

HEADERS = {'nlohmann-json3-dev': 'MIT', 'libutfcpp-dev': 'BSL-1.0', 'libcli11-dev': 'BSD-3-Clause'}
GCC = {'gcc-mingw-w64-base': 'GPL-3.0-or-later WITH GCC-exception-3.1'}
WIN64 = GCC | {'mingw-w64-x86-64-dev': 'ZPL-2.1'}
WIN32 = GCC | {'mingw-w64-i686-dev': 'ZPL-2.1'}
# What is compiled or linked into the archives whose names contain the word.
INSIDE = {
    'qzsvggen-tools': HEADERS,
    '-linux-': HEADERS,
    '-windows-x86_64': HEADERS | WIN64,
    '-windows-i686': HEADERS | WIN32,
    '-win_amd64': WIN64,
    '-win32': WIN32,
    '.nupkg': WIN64 | WIN32,
    'qzsvggen-pdf': {'libmupdf-dev': 'AGPL-3.0-or-later', 'libcli11-dev': 'BSD-3-Clause'},
}


def licence(expression):
    return [{'expression': expression}]


def package(name, expression):
    version = subprocess.run(['dpkg-query', '-W', '-f=${Version}', name], check=True,
                             capture_output=True, text=True).stdout
    purl = f'pkg:deb/debian/{name}@{version}'
    return {'type': 'library', 'bom-ref': purl, 'name': name, 'version': version, 'purl': purl,
            'licenses': licence(expression)}


def main():
    version, *archives = sys.argv[1:]
    components, dependencies = {}, []
    for path in sorted(map(Path, archives)):
        inside = [package(*each) for word, packages in INSIDE.items() if word in path.name
                  for each in packages.items()]
        pdf = any('AGPL' in str(each['licenses']) for each in inside)
        components |= {each['bom-ref']: each for each in inside}
        components[path.name] = {
            'type': 'file', 'bom-ref': path.name, 'name': path.name, 'version': version,
            'hashes': [{'alg': 'SHA-256', 'content': hashlib.sha256(path.read_bytes()).hexdigest()}],
            'licenses': licence('AGPL-3.0-or-later' if pdf else 'MIT')}
        dependencies.append({'ref': path.name, 'dependsOn': [each['bom-ref'] for each in inside]})
    day = time.strftime('%Y-%m-%dT00:00:00Z', time.gmtime(int(os.environ['SOURCE_DATE_EPOCH'])))
    json.dump({
        'bomFormat': 'CycloneDX', 'specVersion': '1.5', 'version': 1,
        'metadata': {'timestamp': day,
                     'component': {'type': 'library', 'name': 'qzsvggen', 'version': version,
                                   'licenses': licence('MIT')}},
        'components': list(components.values()), 'dependencies': dependencies,
    }, sys.stdout, indent=1)
    print()


main()
