#ifndef SRC_LARGEPAGES_H_
#define SRC_LARGEPAGES_H_

#include <cstddef>

namespace NS_ASCII {

/// Asks the system for large pages under a block that has not been written to yet: a table of a million
/// records is looked up at random, and with small pages the address translation misses as often as the cache.
/// Blocks that are smaller than a large page are left alone, and so is everything on systems that have none.
/// Any thread may ask for a block of its own.
void PreferLargePages(void* block, std::size_t bytes);

}  // namespace NS_ASCII

#endif  // SRC_LARGEPAGES_H_
