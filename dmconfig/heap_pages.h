// HeapPages has the system provide the pages that a load is going to fill, many in one call. Each
// page that is used for the first time is a page fault otherwise, and these are most of the time of
// a large load in a new process, above all on a virtual machine. At its end a load may have got up
// to 112 KiB that it did not fill. Not installed.
#ifndef QUARRY_DMCONFIG_HEAP_PAGES_H_
#define QUARRY_DMCONFIG_HEAP_PAGES_H_

#include <cstddef>

namespace quarry::storage::dmconfig {

class HeapPages {
 public:
  // Called for all that is stored. Small texts, which need few pages, cause no call of the system.
  void Use(std::size_t bytes) {
    if (bytes >= left_) Provide();
    left_ -= bytes < left_ ? bytes : left_;
  }

 private:
  // The C library gives larger blocks a mapping of their own.
  static constexpr std::size_t kBlock = std::size_t{112} << 10U;

  void Provide();

  std::size_t left_ = kBlock / 4;  // bytes until the next call
};

}  // namespace quarry::storage::dmconfig

#endif  // QUARRY_DMCONFIG_HEAP_PAGES_H_
