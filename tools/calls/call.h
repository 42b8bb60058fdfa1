// The calls of a recording as values, on their way to a consumer.
//
// A consumer of calls is an object that takes (Function<SVG_DrawLine>(), the C parameters behind
// the handle...) for each function, with an overload for the functions that it treats by themselves
// and a template for all others. Producers are recordings and the exports of the tracing library.
#pragma once

#include <functional>
#include <variant>

#include "kinds.h"

namespace qz::tools {

class Call {
 public:
  template <auto function>
  struct Arguments {
    Values<function> values;
  };
#define QZSVGGEN_ARGUMENTS(name, arity) , Arguments<name>
  using Any = std::variant<Arguments<SVG_GetVersion>,
                           Arguments<SVG_Close> QZSVGGEN_FUNCTIONS(QZSVGGEN_ARGUMENTS)>;
#undef QZSVGGEN_ARGUMENTS

  explicit Call(Any any) : any_(std::move(any)) {}

  // Hands the call to a consumer.
  template <class Consumer>
  void to(Consumer&& consumer) const {
    std::visit([&](const auto& arguments) { hand(arguments, consumer); }, any_);
  }

  // Makes the call.
  void operator()(SvgGenerator* generator) const;

  int line = 0;  // in its recording

 private:
  template <auto function, class Consumer>
  static void hand(const Arguments<function>& arguments, Consumer& consumer) {
    std::apply(
        [&](const auto&... value) {
          std::apply([&](auto... parameter) { consumer(Function<function>(), parameter...); },
                     std::tuple_cat(value.parameters()...));
        },
        arguments.values);
  }

  Any any_;
};

// Consumer: draws onto a generator.
struct Draw {
  SvgGenerator* generator;

  template <auto function, class... P>
  void operator()(Function<function>, P... parameters) const {
    function(generator, parameters...);
  }
  void operator()(Function<SVG_GetVersion>) const { SVG_GetVersion(); }
  void operator()(Function<SVG_Close>) const { SVG_Close(generator, nullptr, 0); }
};

// Consumer: writes the lines of a recording.
struct WriteJson {
  JsonWriter& out;

  template <auto function, class... P>
  void operator()(Function<function> which, P... parameters) const {
    out.begin(functionName<function>);
    noteLeastBytes(out, which, parameters...);
    forEachKind<Values<function>>(std::tuple(parameters...),
                                  [&]<class Kind>(std::type_identity<Kind>, auto... parameter) {
                                    Kind::write(out, parameter...);
                                  });
    out.end();
  }
};

// Consumer: writes a statement of C for each call.
struct WriteC {
  CWriter& out;
  std::string& statements;

  template <auto function, class... P>
  void operator()(Function<function> which, P... parameters) const {
    noteLeastBytes(out, which, parameters...);
    forEachKind<Values<function>>(std::tuple(parameters...),
                                  [&]<class Kind>(std::type_identity<Kind>, auto... parameter) {
                                    Kind::emit(out, parameter...);
                                  });
    statements += out.takeStatement(functionName<function>);
  }
  void operator()(Function<SVG_GetVersion>) const { statements += "  SVG_GetVersion();\n"; }
  void operator()(Function<SVG_Close>) const { statements += "  SVG_Close(page, NULL, 0);\n"; }
};

}  // namespace qz::tools
