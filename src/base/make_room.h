#pragma once

#include <algorithm>
#include <vector>

namespace qz {

// Makes room for `count` more values, growing by factors as vectors do: the next `count` calls of
// push_back cannot fail.
template <class Value>
void makeRoom(std::vector<Value>& values, size_t count = 1) {
  if (values.capacity() - values.size() < count)
    values.reserve(std::max(values.size() + count, 2 * values.capacity()));
}

}  // namespace qz
