// Finds the path and the build id of a mapped library in the dynamic linker's tables. The results are copies.
// Any thread may call while the library stays mapped.

#include "tools/recorder/library_of.h"

#include <dlfcn.h>
#include <link.h>

#include <cstddef>
#include <cstdint>

#include "tools/recorder/format/build_id.h"

namespace recorder {
namespace {

struct Search {
  std::uintptr_t address;
  std::string buildId;
};

/// For `dl_iterate_phdr`: 1 when this is the library that holds the address.
int Visit(dl_phdr_info* library, std::size_t /*size*/, void* data) {
  auto& search = *static_cast<Search*>(data);
  for (int at = 0; at < library->dlpi_phnum; ++at) {
    const ElfW(Phdr)& segment = library->dlpi_phdr[at];
    if (segment.p_type == PT_LOAD &&
        search.address - library->dlpi_addr - segment.p_vaddr < segment.p_memsz) {
      search.buildId = recording_format::BuildIdOf(*library);
      return 1;
    }
  }
  return 0;
}

}  // namespace

Library LibraryOf(const void* address) {
  Dl_info info;
  Library library;
  if (dladdr(address, &info) != 0 && info.dli_fname != nullptr) {
    library.path = info.dli_fname;
  }
  Search search{reinterpret_cast<std::uintptr_t>(address), ""};
  dl_iterate_phdr(Visit, &search);
  library.buildId = search.buildId;
  return library;
}

}  // namespace recorder
