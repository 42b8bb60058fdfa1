#include "real_library.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "trace_file.h"

#if !defined(_WIN32)
#include <dlfcn.h>
#include <link.h>
#endif

namespace qz::tools {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(const std::string& what) {
  sayOfTrace(what);
  std::exit(127);
}

#if defined(_WIN32)

using Library = HMODULE;

fs::path ownPath() {
  HMODULE self = nullptr;
  GetModuleHandleExA(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      reinterpret_cast<const char*>(&ownPath), &self);
  char path[4096];
  return {std::string(path, GetModuleFileNameA(self, path, sizeof path))};
}

Library load() {
  const char* given = std::getenv("QZSVGGEN_TRACE_LIBRARY");
  const std::string path =
      given != nullptr ? given : (ownPath().parent_path() / "qzsvggen-real.dll").string();
  const HMODULE library = LoadLibraryA(path.c_str());
  if (library == nullptr)
    fail(path + ": cannot be loaded, error " + std::to_string(GetLastError()) +
         "; the real qzsvggen.dll belongs there, or into QZSVGGEN_TRACE_LIBRARY");
  return library;
}

void* find(Library library, const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(library, name));
}

#else

using Library = void*;
constexpr const char* kSoname = "libqzsvggen.so.1";

fs::path ownPath() {
  Dl_info info{};
  dladdr(reinterpret_cast<const void*>(&ownPath), &info);
  return info.dli_fname;
}

// Where the program's libraries are looked for: a library of our own soname is never looked for
// again once we are loaded.
std::vector<fs::path> searchPath() {
  std::vector<fs::path> folders;
  void* const program = dlopen(nullptr, RTLD_LAZY);
  Dl_serinfo counts{};
  if (program == nullptr || dlinfo(program, RTLD_DI_SERINFOSIZE, &counts) != 0) return folders;
  std::vector<char> room(counts.dls_size);
  auto* const list = reinterpret_cast<Dl_serinfo*>(room.data());
  *list = counts;
  if (dlinfo(program, RTLD_DI_SERINFO, list) == 0)
    for (unsigned i = 0; i < list->dls_cnt; ++i)
      folders.emplace_back(list->dls_serpath[i].dls_name);
  folders.emplace_back("/usr/local/lib");
  return folders;
}

Library load() {
  std::vector<fs::path> candidates;
  if (const char* given = std::getenv("QZSVGGEN_TRACE_LIBRARY")) {
    candidates = {given};
  } else {
    candidates.push_back(ownPath().parent_path() / "libqzsvggen-real.so.1");
    for (const fs::path& folder : searchPath()) candidates.push_back(folder / kSoname);
  }
  std::string tried;
  for (const fs::path& candidate : candidates) {
    std::error_code error;
    if (!fs::exists(candidate, error) || fs::equivalent(candidate, ownPath(), error)) continue;
    void* const library = dlopen(fs::absolute(candidate).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library != nullptr && dlsym(library, "SVG_Create") != reinterpret_cast<void*>(&SVG_Create))
      return library;
    tried = library == nullptr ? std::string(": ") + dlerror() : std::string();
  }
  fail("the real " + std::string(kSoname) +
       " is not found; name its path in QZSVGGEN_TRACE_LIBRARY" + tried);
}

void* find(Library library, const char* name) { return dlsym(library, name); }

#endif

template <class Pointer>
void bind(Library library, const char* name, Pointer& pointer) {
  pointer = reinterpret_cast<Pointer>(find(library, name));
  if (pointer == nullptr) fail(std::string("the real library has no ") + name);
}

}  // namespace

const RealLibrary& RealLibrary::get() {
  static const RealLibrary real = [] {
    RealLibrary loaded;
    Library library = load();
    bind(library, "SVG_Create", loaded.create);
    bind(library, "SVG_Delete", loaded.destroy);
    bind(library, "SVG_GetVersion", loaded.getVersion);
    bind(library, "SVG_Close", loaded.close);
#define QZSVGGEN_BIND(name, arity) bind(library, #name, of<name>);
    QZSVGGEN_FUNCTIONS(QZSVGGEN_BIND)
#undef QZSVGGEN_BIND
    return loaded;
  }();
  return real;
}

}  // namespace qz::tools
