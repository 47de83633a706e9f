#include "platform/linux/posix/LeakCheck.h"

#ifndef __has_feature
#define __has_feature(feature) 0  // GCC's: it defines __SANITIZE_ADDRESS__ instead
#endif

#if defined(__SANITIZE_ADDRESS__) || __has_feature(address_sanitizer)
#include <sanitizer/lsan_interface.h>

#include <cstdint>
#include <fstream>
#include <sstream>
#include <string>

namespace dormel::posix {

void checkForLeaks() {
  // The QML engine holds things by a heap in mappings of its own, where the sanitizer would not look for pointers.
  std::ifstream maps("/proc/self/maps");
  for (std::string line; std::getline(maps, line);) {
    if (line.find("JSGCHeap") == std::string::npos || line.find(" rw") == std::string::npos) continue;
    std::istringstream range(line);
    std::uintptr_t begin = 0;
    std::uintptr_t end = 0;
    range >> std::hex >> begin;
    range.ignore();
    range >> end;
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the kernel's table is text
    __lsan_register_root_region(reinterpret_cast<const void*>(begin), end - begin);
  }
  __lsan_do_recoverable_leak_check();
}

}  // namespace dormel::posix

#else

namespace dormel::posix {

void checkForLeaks() {}

}  // namespace dormel::posix

#endif
