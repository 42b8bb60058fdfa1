// The library that is traced, loaded at the first call.
#pragma once

#include "functions.h"

namespace qz::tools {

struct RealLibrary {
  decltype(&SVG_Create) create = nullptr;
  decltype(&SVG_Delete) destroy = nullptr;
  decltype(&SVG_GetVersion) getVersion = nullptr;
  decltype(&SVG_Close) close = nullptr;

  // Another function.
  template <auto function>
  static inline std::remove_const_t<decltype(function)> of = nullptr;

  // The library. One that cannot be found is fatal: that is said, and the program ends.
  static const RealLibrary& get();
};

}  // namespace qz::tools
