#ifndef TESTS_FREED_MEMORY_H_
#define TESTS_FREED_MEMORY_H_

#include <malloc.h>

#include <cstddef>

/// While it lives, the C library overwrites memory that is given back, so that a test sees a text that was
/// read after its end. The smallest pieces are spared: only those of `kWholeBytes` or more are sure to be
/// overwritten. Does nothing under a sanitizer, which sees such a read by itself.
class FreedMemoryOverwritten {
 public:
  static constexpr std::size_t kWholeBytes = 2048;

  FreedMemoryOverwritten() { mallopt(M_PERTURB, 0xA5); }
  ~FreedMemoryOverwritten() { mallopt(M_PERTURB, 0); }
  FreedMemoryOverwritten(const FreedMemoryOverwritten&) = delete;
  FreedMemoryOverwritten& operator=(const FreedMemoryOverwritten&) = delete;
};

#endif  // TESTS_FREED_MEMORY_H_
