"""Every function of the header is bound, with parameters of its types, in Python and in C#.
usage: bindings_test.py REPOSITORY"""
import pathlib
import re
import sys
import unittest

REPOSITORY = pathlib.Path(sys.argv.pop(1))

# What a parameter of the header is in each language. Pointers to bytes are told by their names.
PYTHON = {
    'uint8_t': 'UInt8', 'uint16_t': 'UInt16', 'uint32_t': 'UInt32', 'int32_t': 'Int32',
    'const RECT*': 'Rectangle', 'const POINT*': 'Position', 'const POINT* points': 'Positions',
    'const int32_t*': 'Advances', 'const uint8_t*': 'Bytes', 'const SVG_Char*': 'Bytes',
    'const void*': 'Bytes', 'SVG_Char*': 'Buffer'}
CSHARP = {
    'SvgGenerator*': 'Generator', 'uint8_t': 'byte', 'uint16_t': 'ushort', 'uint32_t': 'uint',
    'int32_t': 'int', 'const RECT*': 'ref Rect', 'const POINT*': 'ref Point',
    'const POINT* points': 'Point[]', 'const int32_t*': 'int[]', 'const uint8_t*': 'byte[]',
    'const SVG_Char*': 'string', 'const SVG_Char* infoData': 'byte[]', 'const void*': 'byte[]',
    'SVG_Char*': '[Out] char[]'}


def header():
    """The parameters of each function, as (type, name)."""
    text = (REPOSITORY / 'include/qzsvggen/qzsvggen.h').read_text('utf-8')
    text = re.sub(r'/\*.*?\*/', '', text, flags=re.DOTALL)
    functions = re.findall(r'QZSVGGEN_CALL\s+(SVG_\w+)\(([^)]*)\)', text)
    return {name: [tuple(re.fullmatch(r'(.*?\*?) ?(\w+)', ' '.join(each.split())).groups())
                   for each in parameters.split(',') if each != 'void']
            for name, parameters in functions}


def expected(types, parameters):
    return [types.get(f'{kind} {name}') or types[kind] for kind, name in parameters]


class Bindings(unittest.TestCase):
    def test_header(self):
        self.assertEqual(len(header()), 39)

    def test_python(self):
        text = (REPOSITORY / 'packaging/python/qzsvggen/_library.py').read_text('utf-8')
        bound = {name: re.findall(r'\w+', parameters)
                 for name, parameters in re.findall(r"'(SVG_\w+)': \[([^]]*)\]", text)}
        self.assertEqual(bound, {
            name: expected(PYTHON, [each for each in parameters if each[0] != 'SvgGenerator*'])
            for name, parameters in header().items()})

    def test_csharp(self):
        text = (REPOSITORY / 'packaging/nuget/src/Native.cs').read_text('utf-8')
        declared = re.findall(r'static extern (\w+) (SVG_\w+)\(([^)]*)\);', text)
        bound = {name: [re.fullmatch(r'\s*(.*?) \w+', each, re.DOTALL).group(1)
                        for each in parameters.split(',') if each]
                 for _, name, parameters in declared}
        wanted = {name: expected(CSHARP, parameters) for name, parameters in header().items()}
        wanted['SVG_Delete'] = ['IntPtr']  # when nobody holds the handle any more
        self.assertEqual(bound, wanted)
        self.assertEqual({name: result for result, name, _ in declared},
                         dict.fromkeys(wanted, 'int') | {'SVG_Create': 'Generator'})


unittest.main()
