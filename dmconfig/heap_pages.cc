#include "dmconfig/heap_pages.h"

#include <sys/mman.h>

#include <cstdlib>
#include <memory>

namespace quarry::storage::dmconfig {

// The block is where the next small ones will be: at the end of the heap, where either all pages
// were used before or the last is new. When it is elsewhere, or the system is too old, nothing is
// lost but the time of the calls.
void HeapPages::Provide() {
  constexpr int kPopulateWrite = 23;  // MADV_POPULATE_WRITE, which older headers lack
  constexpr std::size_t kPage = 4096;
  left_ = kBlock;
  void* const block = std::malloc(kBlock);
  if (block == nullptr) return;
  void* begin = block;
  std::size_t size = kBlock;
  std::align(kPage, kPage, begin, size);
  size -= size % kPage;
  unsigned char was_used = 1;
  if (mincore(static_cast<char*>(begin) + size - kPage, kPage, &was_used) == 0 && was_used == 0) {
    madvise(begin, size, kPopulateWrite);
  }
  std::free(block);
}

}  // namespace quarry::storage::dmconfig
