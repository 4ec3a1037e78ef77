// Finds the path and the build id of a mapped library in the dynamic linker's tables. The results are copies.
// Any thread may call while the library stays mapped.

#include "tools/recorder/library_of.h"

#include <dlfcn.h>
#include <elf.h>
#include <link.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace recorder {
namespace {

std::string Hexadecimal(const unsigned char* bytes, std::size_t size) {
  constexpr const char* kDigits = "0123456789abcdef";
  std::string text;
  for (std::size_t at = 0; at < size; ++at) {
    text += kDigits[bytes[at] >> 4U];
    text += kDigits[bytes[at] & 0xFU];
  }
  return text;
}

/// Looks for the build id in a segment of notes. Each note is a header, a name and a description, the latter
/// two padded to four bytes.
std::string BuildIdIn(const unsigned char* notes, std::size_t size) {
  std::size_t at = 0;
  while (size - at >= sizeof(ElfW(Nhdr))) {
    ElfW(Nhdr) note;
    std::memcpy(&note, notes + at, sizeof note);
    const std::size_t name = at + sizeof note;
    const std::size_t description = name + (std::size_t{note.n_namesz} + 3) / 4 * 4;
    const std::size_t next = description + (std::size_t{note.n_descsz} + 3) / 4 * 4;
    if (next > size) {
      break;
    }
    if (note.n_type == NT_GNU_BUILD_ID && note.n_namesz == sizeof "GNU" &&
        std::memcmp(notes + name, "GNU", sizeof "GNU") == 0) {
      return Hexadecimal(notes + description, note.n_descsz);
    }
    at = next;
  }
  return "";
}

struct Search {
  std::uintptr_t address;
  std::string buildId;
};

/// For `dl_iterate_phdr`: 1 when this is the library that holds the address.
int Visit(dl_phdr_info* library, std::size_t /*size*/, void* data) {
  auto& search = *static_cast<Search*>(data);
  bool holdsAddress = false;
  std::string buildId;
  for (int at = 0; at < library->dlpi_phnum; ++at) {
    const ElfW(Phdr)& segment = library->dlpi_phdr[at];
    const std::uintptr_t begin = library->dlpi_addr + segment.p_vaddr;
    if (segment.p_type == PT_LOAD && search.address - begin < segment.p_memsz) {
      holdsAddress = true;
    } else if (segment.p_type == PT_NOTE && buildId.empty()) {
      // NOLINTNEXTLINE(performance-no-int-to-ptr)
      buildId = BuildIdIn(reinterpret_cast<const unsigned char*>(begin), segment.p_memsz);
    }
  }
  if (holdsAddress) {
    search.buildId = buildId;
  }
  return holdsAddress ? 1 : 0;
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
