#include "recording.h"

#include <algorithm>
#include <iterator>
#include <new>
#include <string_view>

#include "arguments.h"

namespace qz {
namespace {

using Call = Recording::Call;

template <auto function>
Call read(ArgumentReader& reader) {
  return bind<function>(readValues<function>(reader));
}

// ---- Functions whose signature does not tell all ------------------------------------------------

int32_t getVersion(SvgGenerator*) { return SVG_GetVersion(); }

int32_t closeWithoutBuffer(SvgGenerator* generator) { return SVG_Close(generator, nullptr, 0); }

// The info data is sized in bytes. The heap's alignment lets them be read as code units.
int32_t beginSignatureField(SvgGenerator* generator, const RECT* bounds, const SVG_Char* name,
                            int32_t nameLength, const void* infoData, int32_t infoDataSize) {
  return SVG_BeginSignatureField(generator, bounds, name, nameLength,
                                 static_cast<const SVG_Char*>(infoData), infoDataSize);
}

Call readFormField(ArgumentReader& reader) {
  auto values = readValues<SVG_BeginFormField>(reader);
  if (std::get<0>(values).value == SVG_FIELD_DATE && std::get<5>(values).bytes->size() < 8)
    reader.fail("a date field's data has at least eight bytes");
  return bind<SVG_BeginFormField>(std::move(values));
}

// ---- All functions but SVG_Create and SVG_Delete ------------------------------------------------

struct Function {
  std::string_view name;
  Call (*read)(ArgumentReader&);
};

#define FUNCTION(name) \
  { #name, read < name> }

constexpr Function functions[] = {
    {"SVG_GetVersion", read<getVersion>},
    {"SVG_Close", read<closeWithoutBuffer>},
    FUNCTION(SVG_SetFill),
    FUNCTION(SVG_SetStroke),
    FUNCTION(SVG_ClearStroke),
    FUNCTION(SVG_BeginInvertPainting),
    FUNCTION(SVG_EndInvertPainting),
    FUNCTION(SVG_InvertPath),
    FUNCTION(SVG_InvertRectangle),
    FUNCTION(SVG_DrawLine),
    FUNCTION(SVG_DrawRectangle),
    FUNCTION(SVG_DrawRoundedRectangle),
    FUNCTION(SVG_DrawPolyline),
    FUNCTION(SVG_DrawPolygon),
    FUNCTION(SVG_DrawPath),
    FUNCTION(SVG_SetFont),
    FUNCTION(SVG_ClearFont),
    FUNCTION(SVG_DrawText),
    FUNCTION(SVG_BeginCharacterBlock),
    FUNCTION(SVG_EndCharacterBlock),
    FUNCTION(SVG_BeginCharacter),
    FUNCTION(SVG_EndCharacter),
    FUNCTION(SVG_SetCharacterReference),
    FUNCTION(SVG_DrawImage),
    FUNCTION(SVG_BeginClippingRegion),
    FUNCTION(SVG_AddClippingRegion),
    FUNCTION(SVG_ExcludeClippingRegion),
    FUNCTION(SVG_EndClippingRegion),
    FUNCTION(SVG_GetCurrentClippingRegion),
    FUNCTION(SVG_SetCurrentClippingRegion),
    {"SVG_BeginFormField", readFormField},
    FUNCTION(SVG_EndFormField),
    FUNCTION(SVG_BeginLink),
    FUNCTION(SVG_EndLink),
    FUNCTION(SVG_SetDocumentTarget),
    {"SVG_BeginSignatureField", read<beginSignatureField>},
    FUNCTION(SVG_EndSignatureField),
};

#undef FUNCTION

nlohmann::json parse(const std::string& line) {
  try {
    nlohmann::json call = nlohmann::json::parse(line);
    if (call.is_array() && !call.empty() && call[0].is_string()) return call;
  } catch (const nlohmann::json::exception& error) {
    // The library's messages begin with names of its own.
    const std::string_view what = error.what();
    throw RecordingError("not JSON: " +
                         std::string(what.substr(std::min(what.find("column"), what.size()))));
  }
  throw RecordingError("a line is a list of a function's name and its arguments");
}

}  // namespace

void Recording::append(const std::string& line) {
  const nlohmann::json call = parse(line);
  const std::string& name = call[0].get_ref<const std::string&>();
  const auto function = std::find_if(std::begin(functions), std::end(functions),
                                     [&](const Function& known) { return known.name == name; });
  if (name == "SVG_Delete") throw RecordingError("SVG_Delete is implied at the end");
  if (name != "SVG_Create" && function == std::end(functions))
    throw RecordingError("unknown function \"" + name + "\"");
  if (name == "SVG_Create" && page_) throw RecordingError("a recording has one SVG_Create");
  if (name != "SVG_Create" && !page_)
    throw RecordingError("a recording begins with SVG_Create, not " + name);
  try {
    ArgumentReader reader(call, files_);
    if (page_) {
      calls_.push_back(function->read(reader));
    } else {
      reader.expectCount(1);
      page_ = std::make_unique<const RECT>(Rectangle(reader).value);
    }
  } catch (const RecordingError& error) {
    throw RecordingError(name + ": " + error.what());
  }
}

Replay::Replay(const Recording& recording)
    : recording_(recording), generator_(SVG_Create(recording.page()), SVG_Delete) {
  if (!generator_) throw std::bad_alloc();
}

void Replay::draw() {
  for (const Recording::Call& call : recording_.calls()) call(generator_.get());
}

std::basic_string<SVG_Char> Replay::close() {
  const int32_t size = SVG_Close(generator_.get(), nullptr, 0);
  if (size == 0) throw RecordingError("the document is too large, or memory is exhausted");
  std::basic_string<SVG_Char> document(static_cast<std::size_t>(size), SVG_Char());
  SVG_Close(generator_.get(), document.data(), size);
  document.pop_back();  // the terminating zero
  return document;
}

}  // namespace qz
