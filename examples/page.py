"""Draws a page with the C interface and writes it to a file as UTF-16 with its mark.

usage: page.py LIBRARY FILE
"""
import codecs
import ctypes
import pathlib
import sys
from ctypes import POINTER, c_char_p, c_int32, c_uint8, c_uint16, c_uint32, c_void_p

LINK_EXTERNAL = 1
FIELD_CHECKBOX = 14
CLOSEFIGURE, LINETO, BEZIERTO, MOVETO = 1, 2, 4, 6


class Point(ctypes.Structure):
    _fields_ = [('x', c_int32), ('y', c_int32)]


class Rect(ctypes.Structure):
    _fields_ = [('left', c_int32), ('top', c_int32), ('right', c_int32), ('bottom', c_int32)]


# The parameters behind the handle. Text is a pointer to the bytes of its code units.
PARAMETERS = {
    'SVG_Delete': [],
    'SVG_Close': [c_void_p, c_int32],
    'SVG_SetFill': [c_uint8] * 4,
    'SVG_SetStroke': [c_uint8] * 4 + [c_uint32],
    'SVG_ClearStroke': [],
    'SVG_DrawRectangle': [POINTER(Rect)],
    'SVG_DrawPolyline': [POINTER(Point), c_uint32],
    'SVG_DrawPath': [POINTER(Point), POINTER(c_uint8), c_uint32],
    'SVG_SetFont': [c_char_p, c_uint32, c_int32, c_int32, c_int32],
    'SVG_DrawText': [c_char_p, c_int32, POINTER(Point), POINTER(c_int32), c_uint32],
    'SVG_BeginClippingRegion': [POINTER(Rect)],
    'SVG_EndClippingRegion': [],
    'SVG_BeginFormField': [c_uint16, c_uint8, c_uint8, POINTER(Rect), c_char_p, c_int32, c_char_p,
                           c_int32],
    'SVG_EndFormField': [],
    'SVG_BeginLink': [c_uint16, c_char_p, c_int32],
    'SVG_EndLink': [],
}


def load(path):
    library = ctypes.CDLL(path)  # cdecl, on Windows too
    library.SVG_Create.argtypes, library.SVG_Create.restype = [POINTER(Rect)], c_void_p
    for name, parameters in PARAMETERS.items():
        function = getattr(library, name)
        function.argtypes, function.restype = [c_void_p] + parameters, c_int32
    return library


def units(text):
    """The code units of text, and their count."""
    data = text.encode('utf-16-le')
    return data, len(data) // 2


def array(kind, items):
    return (kind * len(items))(*items)


def draw_page(svg, page):
    # A card.
    svg.SVG_SetFill(page, 255, 250, 246, 232)
    svg.SVG_SetStroke(page, 255, 120, 90, 40, 6)
    svg.SVG_DrawRectangle(page, Rect(150, 150, 1950, 900))

    # A heading, with the advance from each code unit to the next.
    advances = array(c_int32, [79, 55, 37, 49, 27, 110, 110])
    svg.SVG_ClearStroke(page)
    svg.SVG_SetFill(page, 255, 40, 40, 40)
    svg.SVG_SetFont(page, *units('Times New Roman'), 110, 0, 1)
    svg.SVG_DrawText(page, *units('Caf\u00e9 \u6f22\u5b57'), Point(250, 330), advances, 100)

    # A link around a line of text.
    svg.SVG_SetFont(page, *units('Arial'), 60, 0, 0)
    svg.SVG_SetFill(page, 255, 0, 70, 160)
    svg.SVG_BeginLink(page, LINK_EXTERNAL, *units('https://example.org/?a=1&b=2'))
    svg.SVG_DrawText(page, *units('example.org'), Point(250, 450), None, 100)
    svg.SVG_EndLink(page)

    # Curves, of which a clip region shows the left part.
    wave = array(Point, [(250, 680), (500, 480), (700, 880), (1000, 680), (1300, 480), (1400, 880),
                         (1700, 680), (1700, 860), (250, 860)])
    types = array(c_uint8, [MOVETO] + [BEZIERTO] * 6 + [LINETO, LINETO | CLOSEFIGURE])
    svg.SVG_BeginClippingRegion(page, Rect(250, 500, 1200, 860))
    svg.SVG_SetFill(page, 128, 60, 140, 190)
    svg.SVG_DrawPath(page, wave, types, len(types))
    svg.SVG_EndClippingRegion(page)

    # A check box with its tick.
    box = Rect(1500, 600, 1700, 800)
    tick = array(Point, [(1540, 700), (1590, 750), (1670, 640)])
    svg.SVG_SetFill(page, 0, 0, 0, 0)
    svg.SVG_SetStroke(page, 255, 40, 40, 40, 10)
    svg.SVG_BeginFormField(page, FIELD_CHECKBOX, 1, 0, box, *units('agreed'), None, 0)
    svg.SVG_DrawRectangle(page, box)
    svg.SVG_DrawPolyline(page, tick, len(tick))
    svg.SVG_EndFormField(page)


def close_page(svg, page):
    """The document's code units as bytes."""
    size = svg.SVG_Close(page, None, 0)
    if size == 0:
        raise MemoryError('the document cannot be written')
    buffer = (c_uint16 * size)()
    svg.SVG_Close(page, buffer, size)
    return bytes(buffer)[:-2]


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    svg = load(sys.argv[1])
    page = svg.SVG_Create(Rect(0, 0, 2100, 1050))
    if not page:
        raise MemoryError('no generator')
    try:
        draw_page(svg, page)
        document = close_page(svg, page)
    finally:
        svg.SVG_Delete(page)
    pathlib.Path(sys.argv[2]).write_bytes(codecs.BOM_UTF16_LE + document)


main()
