// Prints the heap bytes that a loaded model holds, and how many more its load needed at its peak.
// The program replaces malloc with one that counts.

#include <malloc.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "benchmarks/peers.h"
#include "benchmarks/workload.h"

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void __libc_free(void* block);
}

namespace {

std::size_t live = 0;
std::size_t peak = 0;

void Add(void* block) {
  live += malloc_usable_size(block);
  peak = std::max(peak, live);
}

}  // namespace

extern "C" {

void* malloc(std::size_t size) {
  void* const block = __libc_malloc(size);
  Add(block);
  return block;
}
void* calloc(std::size_t count, std::size_t size) {
  void* const block = __libc_calloc(count, size);
  Add(block);
  return block;
}
void* realloc(void* block, std::size_t size) {
  live -= malloc_usable_size(block);
  void* const moved = __libc_realloc(block, size);
  Add(moved);
  return moved;
}
void free(void* block) {
  live -= malloc_usable_size(block);
  __libc_free(block);
}

}  // extern "C"

namespace quarry::benchmarks {

namespace {

struct Heap {
  std::size_t held = 0;
  std::size_t more_at_peak = 0;
};

template <typename Peer>
Heap MeasureLoad(const std::string& path) {
  const std::size_t before = live;
  peak = live;
  const auto model = Peer::LoadFile(path);
  if (!model) std::abort();
  return {live - before, peak - live};
}

template <typename Peer>
void Print(const std::string& path, const Heap& ours) {
  const Heap other = MeasureLoad<Peer>(path);
  std::printf("  %s %.2f", Peer::kName,
              static_cast<double>(ours.held) / static_cast<double>(other.held));
}

int Main() {
  std::string folder = "/tmp/quarry-heap-XXXXXX";
  if (mkdtemp(folder.data()) == nullptr) return 1;
  std::printf("heap of a loaded file: bytes of ours, ratio to others, more at the peak\n");
  for (const char* name : {"typical", "mid", "commented", "wide", "deep", "sorted", "files-typical",
                           "files-mid", "files-commented", "files-wide", "files-deep"}) {
    const std::string path = folder + '/' + name;
    std::ofstream(path) << MakeWorkload(name).text;
    const Heap ours = MeasureLoad<Ours>(path);
    std::printf("  %-15s %10zu", name, ours.held);
    Print<SimpleIni>(path, ours);
    std::printf(" (<=1.50)");
    if (std::strncmp(name, "files-", 6) != 0) {
      Print<Glib>(path, ours);
      Print<PropertyTree>(path, ours);
      Print<Inih>(path, ours);
    }
    std::printf("  +%zu (<=131072)\n", ours.more_at_peak);
  }
  std::filesystem::remove_all(folder);
  return 0;
}

}  // namespace

}  // namespace quarry::benchmarks

int main() { return quarry::benchmarks::Main(); }
