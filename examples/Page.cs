// Draws a page with the C interface and writes it to a file as UTF-16 with its mark.
// usage: Page FILE
using System;
using System.IO;
using System.Runtime.InteropServices;
using System.Text;

[StructLayout(LayoutKind.Sequential)]
struct Point {
  public int X, Y;
  public Point(int x, int y) { X = x; Y = y; }
}

[StructLayout(LayoutKind.Sequential)]
struct Rect {
  public int Left, Top, Right, Bottom;
  public Rect(int left, int top, int right, int bottom) {
    Left = left; Top = top; Right = right; Bottom = bottom;
  }
}

// Strings are passed as pointers to their UTF-16 code units.
static class Svg {
  const string Library = "qzsvggen";
  const CallingConvention Convention = CallingConvention.Cdecl;

  public const ushort LinkExternal = 1;
  public const ushort FieldCheckBox = 14;
  public const byte CloseFigure = 1, LineTo = 2, BezierTo = 4, MoveTo = 6;

  [DllImport(Library, CallingConvention = Convention)]
  public static extern IntPtr SVG_Create(ref Rect page);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_Delete(IntPtr page);
  [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
  public static extern int SVG_Close(IntPtr page, [Out] char[] buffer, int size);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_SetFill(IntPtr page, byte alpha, byte red, byte green, byte blue);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_SetStroke(IntPtr page, byte alpha, byte red, byte green, byte blue,
                                         uint width);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_ClearStroke(IntPtr page);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_DrawRectangle(IntPtr page, ref Rect rectangle);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_DrawPolyline(IntPtr page, Point[] points, uint count);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_DrawPath(IntPtr page, Point[] points, byte[] types, uint count);
  [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
  public static extern int SVG_SetFont(IntPtr page, string family, uint familyLength, int size,
                                       int italic, int bold);
  [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
  public static extern int SVG_DrawText(IntPtr page, string text, int length, ref Point origin,
                                        int[] advances, uint characterScaling);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_BeginClippingRegion(IntPtr page, ref Rect rectangle);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_EndClippingRegion(IntPtr page);
  [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
  public static extern int SVG_BeginFormField(IntPtr page, ushort fieldType, byte fieldFlags,
                                              byte exFieldFlags, ref Rect bounds, string name,
                                              int nameLength, byte[] typeData, int typeDataSize);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_EndFormField(IntPtr page);
  [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
  public static extern int SVG_BeginLink(IntPtr page, ushort linkType, string target,
                                         int targetLength);
  [DllImport(Library, CallingConvention = Convention)]
  public static extern int SVG_EndLink(IntPtr page);
}

static class Program {
  static void SetFont(IntPtr page, string family, int size, bool bold) {
    Svg.SVG_SetFont(page, family, (uint)family.Length, size, 0, bold ? 1 : 0);
  }

  static void DrawText(IntPtr page, string text, Point origin, int[] advances) {
    Svg.SVG_DrawText(page, text, text.Length, ref origin, advances, 100);
  }

  static void DrawPage(IntPtr page) {
    // A card.
    var card = new Rect(150, 150, 1950, 900);
    Svg.SVG_SetFill(page, 255, 250, 246, 232);
    Svg.SVG_SetStroke(page, 255, 120, 90, 40, 6);
    Svg.SVG_DrawRectangle(page, ref card);

    // A heading, with the advance from each code unit to the next.
    Svg.SVG_ClearStroke(page);
    Svg.SVG_SetFill(page, 255, 40, 40, 40);
    SetFont(page, "Times New Roman", 110, true);
    DrawText(page, "Caf\u00E9 \u6F22\u5B57", new Point(250, 330),
             new[] {79, 55, 37, 49, 27, 110, 110});

    // A link around a line of text.
    const string address = "https://example.org/?a=1&b=2";
    SetFont(page, "Arial", 60, false);
    Svg.SVG_SetFill(page, 255, 0, 70, 160);
    Svg.SVG_BeginLink(page, Svg.LinkExternal, address, address.Length);
    DrawText(page, "example.org", new Point(250, 450), null);
    Svg.SVG_EndLink(page);

    // Curves, of which a clip region shows the left part.
    var left = new Rect(250, 500, 1200, 860);
    var wave = new[] {new Point(250, 680), new Point(500, 480), new Point(700, 880),
                      new Point(1000, 680), new Point(1300, 480), new Point(1400, 880),
                      new Point(1700, 680), new Point(1700, 860), new Point(250, 860)};
    var types = new[] {Svg.MoveTo, Svg.BezierTo, Svg.BezierTo, Svg.BezierTo, Svg.BezierTo,
                       Svg.BezierTo, Svg.BezierTo, Svg.LineTo, (byte)(Svg.LineTo | Svg.CloseFigure)};
    Svg.SVG_BeginClippingRegion(page, ref left);
    Svg.SVG_SetFill(page, 128, 60, 140, 190);
    Svg.SVG_DrawPath(page, wave, types, (uint)types.Length);
    Svg.SVG_EndClippingRegion(page);

    // A check box with its tick.
    var box = new Rect(1500, 600, 1700, 800);
    var tick = new[] {new Point(1540, 700), new Point(1590, 750), new Point(1670, 640)};
    Svg.SVG_SetFill(page, 0, 0, 0, 0);
    Svg.SVG_SetStroke(page, 255, 40, 40, 40, 10);
    Svg.SVG_BeginFormField(page, Svg.FieldCheckBox, 1, 0, ref box, "agreed", 6, null, 0);
    Svg.SVG_DrawRectangle(page, ref box);
    Svg.SVG_DrawPolyline(page, tick, (uint)tick.Length);
    Svg.SVG_EndFormField(page);
  }

  static string ClosePage(IntPtr page) {
    int size = Svg.SVG_Close(page, null, 0);
    if (size == 0) throw new OutOfMemoryException("the document cannot be written");
    var buffer = new char[size];
    Svg.SVG_Close(page, buffer, size);
    return new string(buffer, 0, size - 1);
  }

  static int Main(string[] arguments) {
    if (arguments.Length != 1) return 2;
    var rectangle = new Rect(0, 0, 2100, 1050);
    IntPtr page = Svg.SVG_Create(ref rectangle);
    if (page == IntPtr.Zero) throw new OutOfMemoryException("no generator");
    try {
      DrawPage(page);
      File.WriteAllText(arguments[0], ClosePage(page), Encoding.Unicode);
    } finally {
      Svg.SVG_Delete(page);
    }
    return 0;
  }
}
