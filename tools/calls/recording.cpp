#include "recording.h"

#include <algorithm>
#include <new>
#include <set>
#include <string_view>
#include <unordered_map>

#include "arguments.h"

namespace qz::tools {
namespace {

using Json = nlohmann::json;

// How many JSON values the kinds of a function stand for.
template <class... Kind>
constexpr std::size_t valueCount(std::type_identity<std::tuple<Kind...>>) {
  return (std::size_t{0} + ... + (std::is_same_v<Kind, TypedPoints> ? 2 : 1));
}

template <auto function>
Call read(ArgumentReader& reader) {
  constexpr std::type_identity<Values<function>> kinds;
  reader.expectCount(valueCount(kinds));
  Call::Arguments<function> arguments{readKinds(reader, kinds)};
  if constexpr (isSame<function, SVG_BeginFormField>)
    if (std::get<0>(arguments.values).value == SVG_FIELD_DATE &&
        std::get<5>(arguments.values).bytes->size() < 8)
      reader.fail("a date field's data has at least eight bytes");
  return Call(Call::Any(std::move(arguments)));
}

using Readers = std::unordered_map<std::string_view, Call (*)(ArgumentReader&)>;

const Readers& readers() {
#define QZSVGGEN_READER(name, arity) {#name, read<name>},
  static const Readers all = {{"SVG_GetVersion", read<SVG_GetVersion>},
                              {"SVG_Close", read<SVG_Close>},
                              QZSVGGEN_FUNCTIONS(QZSVGGEN_READER)};
#undef QZSVGGEN_READER
  return all;
}

// Refuses an object that has a key twice, of which the JSON reader would keep the last.
struct RefuseRepeatedKeys {
  std::vector<std::set<std::string>> objects;

  bool operator()(int, Json::parse_event_t event, Json& value) {
    if (event == Json::parse_event_t::object_start) objects.emplace_back();
    if (event == Json::parse_event_t::object_end) objects.pop_back();
    if (event == Json::parse_event_t::key && !objects.back().insert(value).second)
      throw RecordingError("not JSON: the key " + value.dump() + " is there twice");
    return true;
  }
};

Json parse(const std::string& line) {
  if (line.starts_with("\xEF\xBB\xBF")) throw RecordingError("begins with a byte-order mark");
  if (line.find_first_not_of(" \t\r") == std::string::npos)
    throw RecordingError("is blank; each line is a call or a note");
  try {
    Json call = line.find('{') == std::string::npos ? Json::parse(line)
                                                    : Json::parse(line, RefuseRepeatedKeys());
    if (call.is_object()) return call;
    if (call.is_array() && !call.empty() && call[0].is_string()) return call;
  } catch (const Json::out_of_range&) {
    throw RecordingError("a number is far out of range");
  } catch (const Json::exception& error) {
    // The library's messages begin with names of its own.
    const std::string_view what = error.what();
    throw RecordingError("not JSON: " +
                         std::string(what.substr(std::min(what.find("column"), what.size()))));
  }
  throw RecordingError("a line is a list of a function's name and its arguments, or a note {...}");
}

}  // namespace

void Recording::append(const std::string& line) {
  ++lines_;
  const Json call = parse(line);
  if (call.is_object()) {
    notes_.push_back(line);
    return;
  }
  const std::string& name = call[0].get_ref<const std::string&>();
  const auto function = readers().find(name);
  if (name == "SVG_Delete") throw RecordingError("SVG_Delete is implied at the end");
  if (name != "SVG_Create" && function == readers().end())
    throw RecordingError("unknown function \"" + name + "\"");
  if (name == "SVG_Create" && page_) throw RecordingError("a recording has one SVG_Create");
  if (name != "SVG_Create" && !page_)
    throw RecordingError("a recording begins with SVG_Create, not " + name);
  try {
    ArgumentReader reader(call, files_);
    if (page_) {
      Call& added = calls_.emplace_back(function->second(reader));
      added.line = lines_;
    } else {
      reader.expectCount(1);
      page_ = std::make_unique<const RECT>(Rectangle(reader).value);
      pageLine_ = lines_;
    }
  } catch (const RecordingError& error) {
    throw RecordingError(name + ": " + error.what());
  }
}

void Call::operator()(SvgGenerator* generator) const { to(Draw{generator}); }

Replay::Replay(const Recording& recording)
    : recording_(recording), generator_(SVG_Create(recording.page()), SVG_Delete) {
  if (!generator_) throw std::bad_alloc();
}

std::size_t Replay::draw(int lastLine) {
  std::size_t drawn = 0;
  for (const Call& call : recording_.calls()) {
    if (lastLine > 0 && call.line > lastLine) break;
    call(generator_.get());
    ++drawn;
  }
  return drawn;
}

Document Replay::close() {
  const int32_t size = SVG_Close(generator_.get(), nullptr, 0);
  if (size == 0) throw RecordingError("the document is too large, or memory is exhausted");
  Document document(static_cast<std::size_t>(size), SVG_Char());
  SVG_Close(generator_.get(), document.data(), size);
  document.pop_back();  // the terminating zero
  return document;
}

}  // namespace qz::tools
