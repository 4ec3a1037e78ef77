#include "src/largepages.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>

namespace NS_ASCII {

void PreferLargePages(void* block, std::size_t bytes) {
  constexpr std::size_t kLargePage = std::size_t{2} << 20;
  if (bytes < kLargePage) {
    return;
  }
  // Advice is given for whole pages, so the block's first, shared one is left out.
  const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  const auto start = reinterpret_cast<std::uintptr_t>(block);
  const std::uintptr_t first = (start + page - 1) / page * page;
  // Only a wish: refused, it changes nothing.
  static_cast<void>(
      madvise(static_cast<char*>(block) + (first - start), bytes - (first - start), MADV_HUGEPAGE));
}

}  // namespace NS_ASCII
