"""Turns the drawing of a document page into one SVG document."""
from ._page import FieldType, ImageFormat, LinkType, Page, Point, PointType, Rect, Scope, version

__all__ = ['FieldType', 'ImageFormat', 'LinkType', 'Page', 'Point', 'PointType', 'Rect', 'Scope',
           'version']
