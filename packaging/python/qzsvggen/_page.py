"""One page. What each call does to the document is said in the C header, qzsvggen.h."""
from __future__ import annotations

import ctypes
import enum
from collections.abc import Sequence
from types import TracebackType
from typing import Tuple, Union

from ._library import UNITS_ENCODING, library

Point = Tuple[int, int]  # x, y
Rect = Tuple[int, int, int, int]  # left, top, right, bottom
Data = Union[bytes, str]  # text stands for the bytes of its code units


class ImageFormat(enum.IntEnum):
    PNG = 4
    JPEG = 5
    SVG = 8


class FieldType(enum.IntEnum):
    CHECKBOX = 14
    COMBOBOX = 15
    TEXT = 16
    DATE = 17


class LinkType(enum.IntEnum):
    EXTERNAL = 1
    INTERNAL = 2


class PointType(enum.IntFlag):
    CLOSEFIGURE = 1  # added to a line or a curve's last point
    LINETO = 2
    BEZIERTO = 4
    MOVETO = 6


def version() -> int:
    """The version of the C interface, 100."""
    return int(library.SVG_GetVersion())


def _units(text: str) -> bytes:
    return text.encode(UNITS_ENCODING, 'surrogatepass')


def _text(text: str) -> tuple[bytes, int]:
    units = _units(text)
    return units, len(units) // 2


def _data(data: Data) -> tuple[bytes, int]:
    data = _units(data) if isinstance(data, str) else bytes(data)
    return data, len(data)


def _same_length(name: str, items: int, expected: int) -> None:
    if items != expected:
        raise ValueError(f'{items} {name} where {expected} are needed')


class Scope:
    """What a begin_ method opened. `with` ends it; whoever calls the end_ method drops it."""

    def __init__(self, page: Page, end: str) -> None:
        self._page = page
        self._end = end

    def __enter__(self) -> Scope:
        return self

    def __exit__(self, kind: type[BaseException] | None, value: BaseException | None,
                 traceback: TracebackType | None) -> None:
        self._page._call(self._end)


class Page:
    """A page that is being drawn; one thread at a time may use it. `with`, or the end of its life,
    frees it."""

    def __init__(self, page: Rect) -> None:
        self._handle: int | None = None
        self._handle = library.SVG_Create(page)
        if self._handle is None:
            raise MemoryError('no page')

    def delete(self) -> None:
        """Frees the page; it cannot be used any more."""
        handle, self._handle = self._handle, None
        if handle is not None:
            library.SVG_Delete(handle)

    def __enter__(self) -> Page:
        return self

    def __exit__(self, kind: type[BaseException] | None, value: BaseException | None,
                 traceback: TracebackType | None) -> None:
        self.delete()

    def __del__(self) -> None:
        self.delete()

    def _call(self, function: str, *arguments: object) -> int:
        if self._handle is None:
            raise ValueError('the page was deleted')
        return int(getattr(library, function)(self._handle, *arguments))

    def close(self) -> str:
        """Finishes the page and returns its document. Lone surrogates stay in the text. Called
        again, it returns the document of an empty page. Raises MemoryError when the document is too
        large or memory is exhausted; another try may succeed."""
        size = self._call('SVG_Close', None, 0)
        if size == 0:
            raise MemoryError('the document cannot be written')
        buffer = ctypes.create_string_buffer(2 * size)
        self._call('SVG_Close', buffer, size)
        return buffer.raw[:-2].decode(UNITS_ENCODING, 'surrogatepass')

    # Fill and stroke

    def set_fill(self, alpha: int, red: int, green: int, blue: int) -> None:
        self._call('SVG_SetFill', alpha, red, green, blue)

    def set_stroke(self, alpha: int, red: int, green: int, blue: int, width: int) -> None:
        self._call('SVG_SetStroke', alpha, red, green, blue, width)

    def clear_stroke(self) -> None:
        self._call('SVG_ClearStroke')

    # Inversion

    def begin_invert_painting(self) -> Scope:
        self._call('SVG_BeginInvertPainting')
        return Scope(self, 'SVG_EndInvertPainting')

    def end_invert_painting(self) -> None:
        self._call('SVG_EndInvertPainting')

    def invert_path(self, points: Sequence[Point], types: Sequence[int]) -> None:
        self._path('SVG_InvertPath', points, types)

    def invert_rectangle(self, rectangle: Rect) -> None:
        self._call('SVG_InvertRectangle', rectangle)

    # Shapes

    def draw_line(self, start: Point, end: Point) -> None:
        self._call('SVG_DrawLine', start, end)

    def draw_rectangle(self, rectangle: Rect) -> None:
        self._call('SVG_DrawRectangle', rectangle)

    def draw_rounded_rectangle(self, rectangle: Rect, corner_width: int, corner_height: int,
                               corner_mask: int = 15) -> None:
        self._call('SVG_DrawRoundedRectangle', rectangle, corner_width, corner_height, corner_mask)

    def draw_polyline(self, points: Sequence[Point]) -> None:
        self._call('SVG_DrawPolyline', points, len(points))

    def draw_polygon(self, points: Sequence[Point]) -> None:
        self._call('SVG_DrawPolygon', points, len(points))

    def draw_path(self, points: Sequence[Point], types: Sequence[int]) -> None:
        self._path('SVG_DrawPath', points, types)

    def _path(self, function: str, points: Sequence[Point], types: Sequence[int]) -> None:
        _same_length('types', len(types), len(points))
        self._call(function, points, bytes(types), len(points))

    # Text

    def set_font(self, family: str, size: int, italic: bool = False, bold: bool = False) -> None:
        self._call('SVG_SetFont', *_text(family), size, italic, bold)

    def clear_font(self) -> None:
        self._call('SVG_ClearFont')

    def draw_text(self, text: str, origin: Point, advances: Sequence[int] | None = None,
                  character_scaling: int = 100) -> None:
        """`advances` has a width for each UTF-16 code unit: two for a character beyond U+FFFF."""
        units, count = _text(text)
        if advances is not None:
            _same_length('advances', len(advances), count)
        self._call('SVG_DrawText', units, count, origin, advances, character_scaling)

    # Text as outlines

    def begin_character_block(self) -> Scope:
        self._call('SVG_BeginCharacterBlock')
        return Scope(self, 'SVG_EndCharacterBlock')

    def end_character_block(self) -> None:
        self._call('SVG_EndCharacterBlock')

    def begin_character(self, position: Point) -> Scope:
        self._call('SVG_BeginCharacter', position)
        return Scope(self, 'SVG_EndCharacter')

    def end_character(self) -> None:
        self._call('SVG_EndCharacter')

    def set_character_reference(self, reference: int, position: Point) -> None:
        self._call('SVG_SetCharacterReference', reference, position)

    # Pictures

    def draw_image(self, image_format: int, bounds: Rect, data: bytes, quality: int = 100) -> None:
        self._call('SVG_DrawImage', image_format, bounds, bytes(data), len(data), quality)

    # Clip regions

    def begin_clipping_region(self, rectangle: Rect) -> Scope:
        self._call('SVG_BeginClippingRegion', rectangle)
        return Scope(self, 'SVG_EndClippingRegion')

    def add_clipping_region(self, rectangle: Rect) -> None:
        self._call('SVG_AddClippingRegion', rectangle)

    def exclude_clipping_region(self, rectangle: Rect) -> None:
        self._call('SVG_ExcludeClippingRegion', rectangle)

    def end_clipping_region(self) -> None:
        self._call('SVG_EndClippingRegion')

    def get_current_clipping_region(self) -> int | None:
        """The number of the current region, or None."""
        region = self._call('SVG_GetCurrentClippingRegion')
        return None if region < 0 else region

    def set_current_clipping_region(self, region: int) -> bool:
        """Returns whether the page has that region; if not, nothing changes."""
        return self._call('SVG_SetCurrentClippingRegion', region) == 0

    # Document structures

    def begin_form_field(self, field_type: int, flags: int, ex_flags: int, bounds: Rect, name: str,
                         type_data: Data = b'') -> Scope:
        """The data of a date begins with eight bytes, see the header."""
        data, size = _data(type_data)
        if field_type == FieldType.DATE and size < 8:
            raise ValueError('a date field needs eight bytes of data')
        self._call('SVG_BeginFormField', field_type, flags, ex_flags, bounds, *_text(name), data,
                   size)
        return Scope(self, 'SVG_EndFormField')

    def end_form_field(self) -> None:
        self._call('SVG_EndFormField')

    def begin_link(self, link_type: int, target: str) -> Scope:
        self._call('SVG_BeginLink', link_type, *_text(target))
        return Scope(self, 'SVG_EndLink')

    def end_link(self) -> None:
        self._call('SVG_EndLink')

    def set_document_target(self, position: Point, name: str) -> None:
        self._call('SVG_SetDocumentTarget', position, *_text(name))

    def begin_signature_field(self, bounds: Rect, name: str, info: Data = '') -> Scope:
        self._call('SVG_BeginSignatureField', bounds, *_text(name), *_data(info))
        return Scope(self, 'SVG_EndSignatureField')

    def end_signature_field(self) -> None:
        self._call('SVG_EndSignatureField')
