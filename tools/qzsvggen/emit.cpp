// qzsvggen emit: writes a program of C11 that draws the page of a recording.
#include "commands.h"
#include "files.h"

namespace qz::tools {
namespace {

// Compilers are slow with functions that are much longer.
constexpr std::size_t kCallsOfFunction = 200;

constexpr const char* kHead = R"(#include <qzsvggen/qzsvggen.h>
#if defined(_WIN32)
#include <windows.h>
#define UNITS(text) L##text
#else
#define UNITS(text) u##text
#endif

#include <stdio.h>
#include <stdlib.h>

)";

constexpr const char* kTail = R"(
/* Writes UTF-16 with its mark, as this machine has it. */
static int writeDocument(SvgGenerator* page, const char* name) {
  const int32_t size = SVG_Close(page, NULL, 0);
  SVG_Char* document = size > 0 ? malloc(((size_t)size + 1) * sizeof *document) : NULL;
  FILE* file = document != NULL ? fopen(name, "wb") : NULL;
  int done = 0;
  if (file != NULL) {
    document[0] = 0xFEFF;
    SVG_Close(page, document + 1, size);
    done = fwrite(document, sizeof *document, (size_t)size, file) == (size_t)size;
    done = fclose(file) == 0 && done;
  }
  free(document);
  return done;
}

int main(int argc, char** argv) {
  if (argc != 2) {
    fprintf(stderr, "usage: %s FILE\n", argv[0]);
    return 2;
  }
)";

}  // namespace

int EmitCommand::run() const {
  const Recording recording = readRecording(file);
  CWriter writer;
  std::string functions, calls;
  std::size_t count = 0;
  for (std::size_t i = 0; i < recording.calls().size(); ++i) {
    if (i % kCallsOfFunction == 0)
      functions += (i > 0 ? "}\n\n" : "") + std::string("static void draw") +
                   std::to_string(++count) + "(SvgGenerator* page) {\n";
    recording.calls()[i].to(WriteC{writer, functions});
  }
  if (count > 0) functions += "}\n";
  for (std::size_t i = 1; i <= count; ++i) calls += "  draw" + std::to_string(i) + "(page);\n";
  writer.rectangle(*recording.page());
  std::string create = writer.takeStatement("SVG_Create");
  create.erase(create.find("page, "), 6);
  create = create.substr(create.find_first_not_of(' '));
  writeOutput("/* The page of " + file.filename().string() + ". */\n" + kHead + writer.pictures() +
                  functions + kTail + "  SvgGenerator* page = " + create +
                  "  if (page == NULL) return 1;\n" + calls +
                  "  const int done = writeDocument(page, argv[1]);\n  SVG_Delete(page);\n"
                  "  return done ? 0 : 1;\n}\n",
              output, {file});
  return 0;
}

}  // namespace qz::tools
