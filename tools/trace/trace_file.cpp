#include "trace_file.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#if defined(_WIN32)
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#endif

namespace qz::tools {
namespace {

constexpr std::size_t kFirstSize = 1 << 16;
constexpr std::size_t kLargestInline = 2048;  // bytes of a picture

// By content: FNV-1a of 64 bits, eight bytes a step.
uint64_t contentHash(const uint8_t* data, std::size_t size) {
  uint64_t hash = 0xcbf29ce484222325u ^ size;
  for (std::size_t i = 0; i < size; i += 8) {
    uint64_t step = 0;
    std::memcpy(&step, data + i, size - i < 8 ? size - i : 8);
    hash = (hash ^ step) * 0x100000001b3u;
    hash ^= hash >> 32;
  }
  return hash;
}

const char* extensionOf(const uint8_t* data, std::size_t size) {
  const auto begins = [&](std::string_view magic) {
    return size >= magic.size() && std::memcmp(data, magic.data(), magic.size()) == 0;
  };
  if (begins("\x89PNG")) return ".png";
  if (begins("\xFF\xD8")) return ".jpg";
  return begins("<") || begins("\xEF\xBB\xBF<") || begins("\xFF\xFE<") ? ".svg" : ".bin";
}

}  // namespace

void sayOfTrace(const std::string& what) {
  std::fprintf(stderr, "qzsvggen-trace: %s\n", what.c_str());
}

TraceFile::TraceFile(const std::string& folder, const std::string& prefix) : folder_(folder) {
  static std::atomic<int> number = 0;
  // A number may be taken: by an earlier run of a program whose process id has come again.
  for (int tries = 0; tries < 10000 && !isOpen_; ++tries) {
    char digits[16];
    std::snprintf(digits, sizeof digits, "-%04d", ++number);
    name_ = folder_ + "/" + prefix + digits + ".jsonl";
    if (!open()) break;
  }
  if (isOpen_ && !map(kFirstSize)) giveUp("there is no room for it");
}

TraceFile::~TraceFile() { close(); }

void TraceFile::close() {
  if (!isOpen_) return;
  isOpen_ = false;
  cut(position());
  next_ = begin_ = waste_;
  end_ = waste_ + sizeof waste_;
}

// What was recorded so far stays; the host goes on.
void TraceFile::giveUp(const char* why) {
  static std::atomic<bool> said = false;
  if (!said.exchange(true)) sayOfTrace(name_ + " ends here, " + why + "; the program goes on");
  isOpen_ = false;
  cut(lineStart_);
}

void TraceFile::grow() {
  if (isOpen_ && !map(2 * size_)) giveUp("the disk is full");
  if (isOpen_) return;
  begin_ = next_ = waste_;
  end_ = waste_ + sizeof waste_;
}

std::string TraceFile::keepPicture(const uint8_t* data, std::size_t size) {
  if (size <= kLargestInline) return {};
  char digits[24];
  std::snprintf(digits, sizeof digits, "%016llx",
                static_cast<unsigned long long>(contentHash(data, size)));
  std::string name = digits + std::string(extensionOf(data, size));
  const std::string path = folder_ + "/" + name, aside = name_ + ".picture";
  std::error_code error;
  if (std::filesystem::file_size(path, error) == size && !error) return name;
  bool done = false;
  if (std::FILE* file = std::fopen(aside.c_str(), "wb")) {
    std::filesystem::permissions(aside, std::filesystem::perms(0600), error);
    done = std::fwrite(data, 1, size, file) == size;
    done = std::fclose(file) == 0 && done;
  }
  if (done) std::filesystem::rename(aside, path, error);
  if (done && !error) return name;
  std::filesystem::remove(aside, error);
  return {};  // into the line
}

#if defined(_WIN32)

bool TraceFile::open() {
  HANDLE file = CreateFileA(name_.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                            CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    if (GetLastError() == ERROR_FILE_EXISTS) return true;
    sayOfTrace(name_ + ": cannot be written, error " + std::to_string(GetLastError()));
    grow();
    return false;
  }
  file_ = file;
  isOpen_ = true;
  return true;
}

bool TraceFile::map(std::size_t size) {
  const std::size_t written = begin_ != nullptr ? position() : 0;
  if (begin_ != nullptr) UnmapViewOfFile(begin_);
  const HANDLE mapping =
      CreateFileMappingA(file_, nullptr, PAGE_READWRITE, static_cast<DWORD>(uint64_t{size} >> 32),
                         static_cast<DWORD>(size), nullptr);
  void* const view =
      mapping != nullptr ? MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, size) : nullptr;
  if (mapping != nullptr) CloseHandle(mapping);
  begin_ = static_cast<char*>(view);
  if (view == nullptr) return false;
  size_ = size;
  next_ = begin_ + written;
  end_ = begin_ + size;
  return true;
}

void TraceFile::cut(std::size_t size) {
  if (begin_ != nullptr) UnmapViewOfFile(begin_);
  begin_ = nullptr;
  LARGE_INTEGER end;
  end.QuadPart = static_cast<LONGLONG>(size);
  SetFilePointerEx(file_, end, nullptr, FILE_BEGIN);
  SetEndOfFile(file_);
  CloseHandle(file_);
}

#else

bool TraceFile::open() {
  file_ = ::open(name_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (file_ < 0 && errno == EEXIST) return true;
  if (file_ < 0) {
    sayOfTrace(name_ + ": cannot be written: " + std::generic_category().message(errno));
    grow();
    return false;
  }
  isOpen_ = true;
  return true;
}

bool TraceFile::map(std::size_t size) {
  // The blocks are there before they are written to: a full disk is an error here, no signal later.
  if (posix_fallocate(file_, static_cast<off_t>(size_), static_cast<off_t>(size - size_)) != 0)
    return false;
  const std::size_t written = begin_ != nullptr ? position() : 0;
  void* const mapped = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file_, 0);
  if (mapped == MAP_FAILED) return false;
  if (begin_ != nullptr) munmap(begin_, size_);
  begin_ = static_cast<char*>(mapped);
  size_ = size;
  next_ = begin_ + written;
  end_ = begin_ + size;
  return true;
}

void TraceFile::cut(std::size_t size) {
  if (begin_ != nullptr) munmap(begin_, size_);
  begin_ = nullptr;
  if (ftruncate(file_, static_cast<off_t>(size)) != 0) sayOfTrace(name_ + ": has zeros at its end");
  ::close(file_);
}

#endif

}  // namespace qz::tools
