using System;
using System.Runtime.InteropServices;

namespace Qzsvggen {

/// <summary>x to the right, y down, in device units.</summary>
[StructLayout(LayoutKind.Sequential)]
public struct Point {
  public int X, Y;
  public Point(int x, int y) { X = x; Y = y; }
}

[StructLayout(LayoutKind.Sequential)]
public struct Rect {
  public int Left, Top, Right, Bottom;
  public Rect(int left, int top, int right, int bottom) {
    Left = left; Top = top; Right = right; Bottom = bottom;
  }
}

/// <summary>The handle of a page. It stays alive while a call uses it, and refuses calls after it was
/// disposed of.</summary>
public sealed class Generator : SafeHandle {
  private Generator() : base(IntPtr.Zero, true) {}
  public override bool IsInvalid { get { return handle == IntPtr.Zero; } }
  protected override bool ReleaseHandle() { return Native.SVG_Delete(handle) == 0; }
}

/// <summary>The C interface; qzsvggen.h says what each function does. Text is passed as pointers to
/// UTF-16 code units.</summary>
public static class Native {
  private const string Library = "qzsvggen";
  private const CallingConvention Convention = CallingConvention.Cdecl;

  [DllImport(Library, CallingConvention = Convention)]
  public static extern Generator SVG_Create(ref Rect page);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_Delete(IntPtr generator);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_GetVersion();
  [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
  public static extern int SVG_Close(Generator generator, [Out] char[] buffer, int size);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_SetFill(Generator generator, byte alpha, byte red, byte green,
      byte blue);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_SetStroke(Generator generator, byte alpha, byte red, byte green,
      byte blue, uint width);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_ClearStroke(Generator generator);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_BeginInvertPainting(Generator generator);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_EndInvertPainting(Generator generator);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_InvertPath(Generator generator, Point[] points, byte[] types,
      uint count);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_InvertRectangle(Generator generator, ref Rect rectangle);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_DrawLine(Generator generator, ref Point start, ref Point end);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_DrawRectangle(Generator generator, ref Rect rectangle);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_DrawRoundedRectangle(Generator generator, ref Rect rectangle,
      uint cornerWidth, uint cornerHeight, ushort cornerMask);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_DrawPolyline(Generator generator, Point[] points, uint count);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_DrawPolygon(Generator generator, Point[] points, uint count);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_DrawPath(Generator generator, Point[] points, byte[] types,
      uint count);
  [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
  public static extern int SVG_SetFont(Generator generator, string family, uint familyLength,
      int size, int italic, int bold);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_ClearFont(Generator generator);
  [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
  public static extern int SVG_DrawText(Generator generator, string text, int length,
      ref Point origin, int[] advances, uint characterScaling);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_BeginCharacterBlock(Generator generator);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_EndCharacterBlock(Generator generator);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_BeginCharacter(Generator generator, ref Point position);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_EndCharacter(Generator generator);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_SetCharacterReference(Generator generator, uint reference,
      ref Point position);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_DrawImage(Generator generator, ushort format, ref Rect bounds,
      byte[] data, int length, ushort quality);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_BeginClippingRegion(Generator generator, ref Rect rectangle);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_AddClippingRegion(Generator generator, ref Rect rectangle);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_ExcludeClippingRegion(Generator generator, ref Rect rectangle);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_EndClippingRegion(Generator generator);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_GetCurrentClippingRegion(Generator generator);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_SetCurrentClippingRegion(Generator generator, uint region);
  [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
  public static extern int SVG_BeginFormField(Generator generator, ushort fieldType,
      byte fieldFlags, byte exFieldFlags, ref Rect bounds, string name, int nameLength,
      byte[] typeData, int typeDataSize);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_EndFormField(Generator generator);
  [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
  public static extern int SVG_BeginLink(Generator generator, ushort linkType, string target,
      int targetLength);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_EndLink(Generator generator);
  [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
  public static extern int SVG_SetDocumentTarget(Generator generator, ref Point position,
      string name, int nameLength);
  [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
  public static extern int SVG_BeginSignatureField(Generator generator, ref Rect bounds,
      string name, int nameLength, byte[] infoData, int infoDataSize);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_EndSignatureField(Generator generator);
}

}
