// A file in memory, made by memfd_create. The object owns its descriptor. One thread at a time.

#include "fuzz/memory_file.h"

#include <sys/mman.h>
#include <unistd.h>

#include <stdexcept>

namespace fuzz {

MemoryFile::MemoryFile(std::string_view content) : descriptor_(memfd_create("fuzz", MFD_CLOEXEC)) {
  if (descriptor_ < 0 ||
      write(descriptor_, content.data(), content.size()) != static_cast<ssize_t>(content.size())) {
    throw std::runtime_error("no file in memory");
  }
}

MemoryFile::~MemoryFile() { close(descriptor_); }

std::string MemoryFile::path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

}  // namespace fuzz
