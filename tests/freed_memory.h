#ifndef TESTS_FREED_MEMORY_H_
#define TESTS_FREED_MEMORY_H_

#include <malloc.h>

#include <cstddef>

/// While the object exists, the C library overwrites freed memory, so that a test detects a read of a freed
/// text. Only pieces of `kWholeBytes` or more are overwritten for certain. Does nothing under a sanitizer,
/// which detects such a read itself.
class FreedMemoryOverwritten {
 public:
  static constexpr std::size_t kWholeBytes = 2048;

  FreedMemoryOverwritten() { mallopt(M_PERTURB, 0xA5); }
  ~FreedMemoryOverwritten() { mallopt(M_PERTURB, 0); }
  FreedMemoryOverwritten(const FreedMemoryOverwritten&) = delete;
  FreedMemoryOverwritten& operator=(const FreedMemoryOverwritten&) = delete;
};

#endif  // TESTS_FREED_MEMORY_H_
