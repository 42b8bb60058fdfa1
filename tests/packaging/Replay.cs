// Draws a recording with the C# bindings: each call by the method of its name.
// usage: Replay RECORDING.jsonl FILE.svg
using System;
using System.IO;
using System.Json;
using System.Linq;
using System.Reflection;
using System.Text;
using Qzsvggen;

static class Program {
  static string folder;

  static int[] Numbers(JsonValue value) {
    return value == null ? null : ((JsonArray)value).Select(each => (int)each).ToArray();
  }

  static Point ToPoint(JsonValue value) {
    int[] numbers = Numbers(value);
    return new Point(numbers[0], numbers[1]);
  }

  static Rect ToRect(JsonValue value) {
    int[] numbers = Numbers(value);
    return new Rect(numbers[0], numbers[1], numbers[2], numbers[3]);
  }

  static byte[] Bytes(JsonValue value) {
    if (value.JsonType == JsonType.String) return Encoding.Unicode.GetBytes((string)value);
    if (value.JsonType == JsonType.Array) return Numbers(value).Select(each => (byte)each).ToArray();
    return value.ContainsKey("file") ? File.ReadAllBytes(Path.Combine(folder, (string)value["file"]))
                                     : Convert.FromBase64String((string)value["base64"]);
  }

  static object Argument(Type type, JsonValue value) {
    if (type == typeof(Rect)) return ToRect(value);
    if (type == typeof(Point)) return ToPoint(value);
    if (type == typeof(Point[])) return ((JsonArray)value).Select(ToPoint).ToArray();
    if (type == typeof(int[])) return Numbers(value);
    if (type == typeof(byte[])) return Bytes(value);
    if (type == typeof(string)) return (string)value;
    if (type == typeof(bool)) return (int)value != 0;
    if (type.IsEnum) return Enum.ToObject(type, (int)value);
    return Convert.ChangeType((long)value, type);
  }

  static void Draw(Page page, string line) {
    var call = (JsonArray)JsonValue.Parse(line);
    string name = ((string)call[0]).Substring("SVG_".Length);
    MethodInfo method = typeof(Page).GetMethod(name);
    object[] arguments = method.GetParameters()
        .Select((each, i) => Argument(each.ParameterType, call[i + 1])).ToArray();
    method.Invoke(page, arguments);
  }

  static void Expect<Failure>(string what, Action action) where Failure : Exception {
    try {
      action();
    } catch (Failure) {
      return;
    }
    throw new Exception(what + " is not refused");
  }

  static void Refusals() {
    var page = new Page(new Rect(0, 0, 9, 9));
    Expect<ArgumentException>("a path without types",
                              () => page.DrawPath(new[] {new Point(1, 2)}, new byte[0]));
    Expect<ArgumentException>("text with an advance too few",
                              () => page.DrawText("ab", new Point(1, 2), new[] {1}));
    Expect<ArgumentException>("a date without bytes", () => page.BeginFormField(
        FieldType.Date, 0, 0, new Rect(), "", new byte[7]));
    using (page.BeginLink(LinkType.Internal, "a")) page.DrawLine(new Point(1, 2), new Point(3, 4));
    string document = page.Close();
    if (!document.EndsWith("y2=\"4\"/></a></svg>")) throw new Exception(document);
    page.Dispose();
    page.Dispose();
    Expect<ObjectDisposedException>("a call after the end", () => page.ClearFont());
  }

  static void Main(string[] arguments) {
    Refusals();
    folder = Path.GetDirectoryName(arguments[0]);
    string[] lines = File.ReadAllLines(arguments[0]);
    using (var page = new Page(ToRect(JsonValue.Parse(lines[0])[1]))) {
      foreach (string line in lines.Skip(1)) Draw(page, line);
      File.WriteAllText(arguments[1], page.Close(), new UnicodeEncoding(false, true));
    }
  }
}
