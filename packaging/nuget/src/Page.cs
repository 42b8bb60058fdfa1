using System;

namespace Qzsvggen {

public enum ImageFormat : ushort { Png = 4, Jpeg = 5, Svg = 8 }
public enum FieldType : ushort { CheckBox = 14, ComboBox = 15, Text = 16, Date = 17 }
public enum LinkType : ushort { External = 1, Internal = 2 }

/// <summary>The types of a path's points; CloseFigure is added to the last one of a figure.</summary>
public static class PointType {
  public const byte CloseFigure = 1, LineTo = 2, BezierTo = 4, MoveTo = 6;
}

/// <summary>One page. What each call does to the document is said in qzsvggen.h. What that leaves
/// undefined throws before anything is drawn. One thread at a time may use a page.</summary>
public sealed class Page : IDisposable {
  private readonly Generator generator;

  public Page(Rect page) {
    generator = Native.SVG_Create(ref page);
    if (generator.IsInvalid) throw new OutOfMemoryException("no page");
  }

  public void Dispose() { generator.Dispose(); }

  /// <summary>The version of the C interface, 100.</summary>
  public static int GetVersion() { return Native.SVG_GetVersion(); }

  /// <summary>Finishes the page and returns its document; called again, that of an empty page. When
  /// it throws OutOfMemoryException (the document is too large, or memory is exhausted), another try
  /// may succeed.</summary>
  public string Close() {
    int size = Native.SVG_Close(generator, null, 0);
    if (size == 0) throw new OutOfMemoryException("the document cannot be written");
    var document = new char[size];
    Native.SVG_Close(generator, document, size);
    return new string(document, 0, size - 1);
  }

  // Fill and stroke

  public void SetFill(byte alpha, byte red, byte green, byte blue) {
    Native.SVG_SetFill(generator, alpha, red, green, blue);
  }
  public void SetStroke(byte alpha, byte red, byte green, byte blue, uint width) {
    Native.SVG_SetStroke(generator, alpha, red, green, blue, width);
  }
  public void ClearStroke() { Native.SVG_ClearStroke(generator); }

  // Inversion

  public Scope BeginInvertPainting() {
    Native.SVG_BeginInvertPainting(generator);
    return new Scope(EndInvertPainting);
  }
  public void EndInvertPainting() { Native.SVG_EndInvertPainting(generator); }
  public void InvertPath(Point[] points, byte[] types) {
    SameLength(points.Length, types.Length);
    Native.SVG_InvertPath(generator, points, types, (uint)types.Length);
  }
  public void InvertRectangle(Rect rectangle) {
    Native.SVG_InvertRectangle(generator, ref rectangle);
  }

  // Shapes

  public void DrawLine(Point from, Point to) { Native.SVG_DrawLine(generator, ref from, ref to); }
  public void DrawRectangle(Rect rectangle) { Native.SVG_DrawRectangle(generator, ref rectangle); }
  public void DrawRoundedRectangle(Rect rectangle, uint cornerWidth, uint cornerHeight,
                                   ushort cornerMask = 15) {
    Native.SVG_DrawRoundedRectangle(generator, ref rectangle, cornerWidth, cornerHeight, cornerMask);
  }
  public void DrawPolyline(Point[] points) {
    Native.SVG_DrawPolyline(generator, points, (uint)points.Length);
  }
  public void DrawPolygon(Point[] points) {
    Native.SVG_DrawPolygon(generator, points, (uint)points.Length);
  }
  public void DrawPath(Point[] points, byte[] types) {
    SameLength(points.Length, types.Length);
    Native.SVG_DrawPath(generator, points, types, (uint)types.Length);
  }

  // Text

  public void SetFont(string family, int size, bool italic = false, bool bold = false) {
    Native.SVG_SetFont(generator, family, (uint)family.Length, size, italic ? 1 : 0, bold ? 1 : 0);
  }
  public void ClearFont() { Native.SVG_ClearFont(generator); }
  public void DrawText(string text, Point origin, int[] advances = null,
                       uint characterScaling = 100) {
    if (advances != null) SameLength(text.Length, advances.Length);
    Native.SVG_DrawText(generator, text, text.Length, ref origin, advances, characterScaling);
  }

  // Text as outlines

  public Scope BeginCharacterBlock() {
    Native.SVG_BeginCharacterBlock(generator);
    return new Scope(EndCharacterBlock);
  }
  public void EndCharacterBlock() { Native.SVG_EndCharacterBlock(generator); }
  public Scope BeginCharacter(Point position) {
    Native.SVG_BeginCharacter(generator, ref position);
    return new Scope(EndCharacter);
  }
  public void EndCharacter() { Native.SVG_EndCharacter(generator); }
  public void SetCharacterReference(uint reference, Point position) {
    Native.SVG_SetCharacterReference(generator, reference, ref position);
  }

  // Pictures

  public void DrawImage(ImageFormat format, Rect bounds, byte[] data, ushort quality = 100) {
    Native.SVG_DrawImage(generator, (ushort)format, ref bounds, data, data.Length, quality);
  }

  // Clip regions

  public Scope BeginClippingRegion(Rect rectangle) {
    Native.SVG_BeginClippingRegion(generator, ref rectangle);
    return new Scope(EndClippingRegion);
  }
  public void AddClippingRegion(Rect rectangle) {
    Native.SVG_AddClippingRegion(generator, ref rectangle);
  }
  public void ExcludeClippingRegion(Rect rectangle) {
    Native.SVG_ExcludeClippingRegion(generator, ref rectangle);
  }
  public void EndClippingRegion() { Native.SVG_EndClippingRegion(generator); }
  /// <summary>The number of the current region, or null.</summary>
  public uint? GetCurrentClippingRegion() {
    int region = Native.SVG_GetCurrentClippingRegion(generator);
    return region < 0 ? (uint?)null : (uint)region;
  }
  /// <summary>Returns whether the page has that region; if not, nothing changes.</summary>
  public bool SetCurrentClippingRegion(uint region) {
    return Native.SVG_SetCurrentClippingRegion(generator, region) == 0;
  }

  // Document structures

  /// <summary>`typeData` holds UTF-16 code units; that of a date begins with eight bytes, see the
  /// header.</summary>
  public Scope BeginFormField(FieldType type, byte flags, byte exFlags, Rect bounds, string name,
                              byte[] typeData = null) {
    int size = typeData == null ? 0 : typeData.Length;
    if (type == FieldType.Date && size < 8)
      throw new ArgumentException("a date field needs eight bytes of data");
    Native.SVG_BeginFormField(generator, (ushort)type, flags, exFlags, ref bounds, name, name.Length,
                              typeData, size);
    return new Scope(EndFormField);
  }
  public void EndFormField() { Native.SVG_EndFormField(generator); }
  public Scope BeginLink(LinkType type, string target) {
    Native.SVG_BeginLink(generator, (ushort)type, target, target.Length);
    return new Scope(EndLink);
  }
  public void EndLink() { Native.SVG_EndLink(generator); }
  public void SetDocumentTarget(Point position, string name) {
    Native.SVG_SetDocumentTarget(generator, ref position, name, name.Length);
  }
  /// <summary>`info` holds UTF-16 code units.</summary>
  public Scope BeginSignatureField(Rect bounds, string name, byte[] info = null) {
    Native.SVG_BeginSignatureField(generator, ref bounds, name, name.Length, info,
                                   info == null ? 0 : info.Length);
    return new Scope(EndSignatureField);
  }
  public void EndSignatureField() { Native.SVG_EndSignatureField(generator); }

  private static void SameLength(int first, int second) {
    if (first != second)
      throw new ArgumentException(first + " and " + second +
                                  " items that belong together");
  }
}

/// <summary>What a Begin method opened. `using` ends it; who calls the End method drops it.</summary>
public struct Scope : IDisposable {
  private readonly Action end;
  internal Scope(Action end) { this.end = end; }
  public void Dispose() { if (end != null) end(); }
}

}
