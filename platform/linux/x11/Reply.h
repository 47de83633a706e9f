// Ownership of what xcb allocates: replies, errors and events are malloc'ed and belong to the caller.
#pragma once

#include <cstdlib>
#include <memory>

namespace dormel::x11 {

struct FreeDeleter {
  void operator()(void* memory) const { std::free(memory); }  // NOLINT: xcb's own contract
};

/// Null when the server answered with an error or is gone.
template <typename T>
using Reply = std::unique_ptr<T, FreeDeleter>;

template <typename T>
[[nodiscard]] Reply<T> owned(T* reply) {
  return Reply<T>(reply);
}

}  // namespace dormel::x11
