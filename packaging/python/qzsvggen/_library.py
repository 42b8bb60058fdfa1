"""The shared library and its 39 functions, which take checked Python values."""
from __future__ import annotations

import ctypes
import os
import pathlib
import sys
from collections.abc import Sequence
from typing import Any

UNITS_ENCODING = 'utf-16-le' if sys.byteorder == 'little' else 'utf-16-be'


def checked(kind: Any, value: int) -> Any:
    """The value as a C integer, which must hold it: ctypes alone would cut it off."""
    result = kind(value)
    if result.value != value:
        raise OverflowError(f'{value} does not fit {kind.__name__[2:]}')
    return result


class UInt8:
    @staticmethod
    def from_param(value: int) -> Any:
        return checked(ctypes.c_uint8, value)


class UInt16:
    @staticmethod
    def from_param(value: int) -> Any:
        return checked(ctypes.c_uint16, value)


class UInt32:
    @staticmethod
    def from_param(value: int) -> Any:
        return checked(ctypes.c_uint32, value)


class Int32:
    @staticmethod
    def from_param(value: int) -> Any:
        return checked(ctypes.c_int32, value)


def array(kind: Any, values: Sequence[int]) -> Any:
    return (kind * len(values))(*(checked(kind, value) for value in values))


class Rectangle:
    @staticmethod
    def from_param(value: Sequence[int]) -> Any:
        left, top, right, bottom = value
        return array(ctypes.c_int32, (left, top, right, bottom))


class Position:
    @staticmethod
    def from_param(value: Sequence[int]) -> Any:
        x, y = value
        return array(ctypes.c_int32, (x, y))


class Positions:
    @staticmethod
    def from_param(values: Sequence[Sequence[int]]) -> Any:
        return array(ctypes.c_int32, [each for x, y in values for each in (x, y)])


class Advances:
    @staticmethod
    def from_param(values: Sequence[int] | None) -> Any:
        return None if values is None else array(ctypes.c_int32, values)


Bytes = ctypes.c_char_p  # text too, as the bytes of its code units
Handle = Buffer = ctypes.c_void_p

# The parameters of each function behind the handle. All return a signed 32-bit number but
# SVG_Create, which returns the handle.
PARAMETERS: dict[str, list[Any]] = {
    'SVG_Create': [Rectangle],
    'SVG_Delete': [],
    'SVG_GetVersion': [],
    'SVG_Close': [Buffer, Int32],
    'SVG_SetFill': [UInt8, UInt8, UInt8, UInt8],
    'SVG_SetStroke': [UInt8, UInt8, UInt8, UInt8, UInt32],
    'SVG_ClearStroke': [],
    'SVG_BeginInvertPainting': [],
    'SVG_EndInvertPainting': [],
    'SVG_InvertPath': [Positions, Bytes, UInt32],
    'SVG_InvertRectangle': [Rectangle],
    'SVG_DrawLine': [Position, Position],
    'SVG_DrawRectangle': [Rectangle],
    'SVG_DrawRoundedRectangle': [Rectangle, UInt32, UInt32, UInt16],
    'SVG_DrawPolyline': [Positions, UInt32],
    'SVG_DrawPolygon': [Positions, UInt32],
    'SVG_DrawPath': [Positions, Bytes, UInt32],
    'SVG_SetFont': [Bytes, UInt32, Int32, Int32, Int32],
    'SVG_ClearFont': [],
    'SVG_DrawText': [Bytes, Int32, Position, Advances, UInt32],
    'SVG_BeginCharacterBlock': [],
    'SVG_EndCharacterBlock': [],
    'SVG_BeginCharacter': [Position],
    'SVG_EndCharacter': [],
    'SVG_SetCharacterReference': [UInt32, Position],
    'SVG_DrawImage': [UInt16, Rectangle, Bytes, Int32, UInt16],
    'SVG_BeginClippingRegion': [Rectangle],
    'SVG_AddClippingRegion': [Rectangle],
    'SVG_ExcludeClippingRegion': [Rectangle],
    'SVG_EndClippingRegion': [],
    'SVG_GetCurrentClippingRegion': [],
    'SVG_SetCurrentClippingRegion': [UInt32],
    'SVG_BeginFormField': [UInt16, UInt8, UInt8, Rectangle, Bytes, Int32, Bytes, Int32],
    'SVG_EndFormField': [],
    'SVG_BeginLink': [UInt16, Bytes, Int32],
    'SVG_EndLink': [],
    'SVG_SetDocumentTarget': [Position, Bytes, Int32],
    'SVG_BeginSignatureField': [Rectangle, Bytes, Int32, Bytes, Int32],
    'SVG_EndSignatureField': [],
}
WITHOUT_HANDLE = ('SVG_Create', 'SVG_GetVersion')


def load() -> ctypes.CDLL:
    """The library beside this file, or the one that QZSVGGEN_LIBRARY names."""
    name = 'qzsvggen.dll' if os.name == 'nt' else 'libqzsvggen.so'
    path = os.environ.get('QZSVGGEN_LIBRARY') or str(pathlib.Path(__file__).with_name(name))
    library = ctypes.CDLL(path)  # cdecl, on Windows too
    for function, parameters in PARAMETERS.items():
        pointer = getattr(library, function)
        pointer.argtypes = parameters if function in WITHOUT_HANDLE else [Handle, *parameters]
        pointer.restype = Handle if function == 'SVG_Create' else ctypes.c_int32
    return library


library = load()
