// What differs between platforms and compilers, and nothing else. Every other file is plain C++.
#pragma once

#if defined(_WIN32)
#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>  // POINT, RECT and the PT_ values are the platform's own
#endif

#include <cstdint>

// What qzsvggen.def exports is visible, by Windows' linker or by this.
#if defined(__ELF__)
#pragma GCC visibility push(default)
#endif
#include "qzsvggen/qzsvggen.h"
#if defined(__ELF__)
#pragma GCC visibility pop
#endif

// Marks the rare half of a function that is called for every element.
#if defined(__GNUC__)
#define QZ_NOINLINE __attribute__((noinline))
#else
#define QZ_NOINLINE
#endif

namespace qz {

// Eight bytes, the first one lowest. Written out, it is one load on most processors.
inline uint64_t loadEight(const uint8_t* bytes) {
  const auto at = [bytes](int i) { return static_cast<uint64_t>(bytes[i]) << (8 * i); };
  return at(0) | at(1) | at(2) | at(3) | at(4) | at(5) | at(6) | at(7);
}

// The same with the first one highest.
inline uint64_t loadEightBigEndian(const uint8_t* bytes) {
  const auto at = [bytes](int i) { return static_cast<uint64_t>(bytes[i]) << (56 - 8 * i); };
  return at(0) | at(1) | at(2) | at(3) | at(4) | at(5) | at(6) | at(7);
}

// Both halves of the product, one folded onto the other.
inline uint64_t foldedProduct(uint64_t a, uint64_t b) {
#if defined(__SIZEOF_INT128__)
  __extension__ using Product = unsigned __int128;
  const Product product = static_cast<Product>(a) * b;
  return static_cast<uint64_t>(product) ^ static_cast<uint64_t>(product >> 64);
#else
  const uint64_t aLow = a & 0xFFFFFFFF, aHigh = a >> 32;
  const uint64_t bLow = b & 0xFFFFFFFF, bHigh = b >> 32;
  const uint64_t low = aLow * bLow;
  const uint64_t middle = aHigh * bLow + (low >> 32);
  const uint64_t otherMiddle = aLow * bHigh + (middle & 0xFFFFFFFF);
  const uint64_t high = aHigh * bHigh + (middle >> 32) + (otherMiddle >> 32);
  return (otherMiddle << 32 | (low & 0xFFFFFFFF)) ^ high;
#endif
}

}  // namespace qz
