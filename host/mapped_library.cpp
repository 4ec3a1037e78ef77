#include "host/mapped_library.h"

#include <dlfcn.h>
#include <elf.h>
#include <link.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "host/problem.h"

namespace host {
namespace {

link_map* MapOf(void* handle) {
  link_map* map = nullptr;
  return dlinfo(handle, RTLD_DI_LINKMAP, &map) == 0 ? map : nullptr;
}

template <class Visit>
void ForEachDynamic(void* handle, Visit visit) {
  const link_map* const map = MapOf(handle);
  if (map == nullptr) {
    return;
  }
  for (const ElfW(Dyn)* entry = map->l_ld; entry->d_tag != DT_NULL; ++entry) {
    visit(*entry);
  }
}

/// The `count` objects at `offset`; null when the file ends before, or they are not aligned.
template <class T>
const T* At(const std::vector<char>& file, std::uint64_t offset, std::uint64_t count = 1) {
  const bool fits =
      offset <= file.size() && count <= (file.size() - offset) / sizeof(T) && offset % alignof(T) == 0;
  return fits ? reinterpret_cast<const T*>(file.data() + offset) : nullptr;
}

/// The bytes of a regular file; none of anything else.
std::vector<char> ReadFile(const std::string& path) {
  std::error_code error;
  const bool isRegular = std::filesystem::is_regular_file(path, error);
  const std::uintmax_t size = isRegular ? std::filesystem::file_size(path, error) : 0;
  std::vector<char> bytes(error ? 0 : size);
  std::ifstream stream(path, std::ios::binary);
  stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  bytes.resize(static_cast<std::size_t>(stream.gcount()));
  return bytes;
}

/// The header of an ELF file of this process's own width and byte order; null for anything else.
const ElfW(Ehdr) * HeaderOf(const std::vector<char>& file) {
  constexpr unsigned char kOwnClass = sizeof(void*) == 8 ? ELFCLASS64 : ELFCLASS32;
  constexpr unsigned char kOwnOrder = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ ? ELFDATA2LSB : ELFDATA2MSB;
  const auto* const header = At<ElfW(Ehdr)>(file, 0);
  const bool isElf = header != nullptr && std::memcmp(header->e_ident, ELFMAG, SELFMAG) == 0 &&
                     header->e_ident[EI_CLASS] == kOwnClass && header->e_ident[EI_DATA] == kOwnOrder;
  return isElf ? header : nullptr;
}

/// Whether the file lacks a part of what would be mapped. The dynamic linker maps it all the same, and the
/// process ends where it touches what is missing.
bool IsCutShort(const std::string& path) {
  const std::vector<char> file = ReadFile(path);
  const auto* const header = HeaderOf(file);
  if (header == nullptr) {
    return false;
  }
  const auto* const segments = At<ElfW(Phdr)>(file, header->e_phoff, header->e_phnum);
  return segments == nullptr ||
         std::any_of(segments, segments + header->e_phnum, [&](const ElfW(Phdr) & segment) {
           return segment.p_type == PT_LOAD && At<char>(file, segment.p_offset, segment.p_filesz) == nullptr;
         });
}

/// Whether the library exports a unique-binding symbol, which makes the dynamic linker keep it for good.
bool HasUniqueSymbol(const std::string& path) {
  const std::vector<char> file = ReadFile(path);
  const auto* const header = HeaderOf(file);
  if (header == nullptr) {
    return false;
  }
  const auto* const sections = At<ElfW(Shdr)>(file, header->e_shoff, header->e_shnum);
  if (sections == nullptr) {
    return false;
  }
  for (const ElfW(Shdr)* section = sections; section != sections + header->e_shnum; ++section) {
    const std::uint64_t count = section->sh_size / sizeof(ElfW(Sym));
    const auto* const symbols = At<ElfW(Sym)>(file, section->sh_offset, count);
    if (section->sh_type != SHT_DYNSYM || symbols == nullptr) {
      continue;
    }
    if (std::any_of(symbols, symbols + count,
                    [](const ElfW(Sym) & symbol) { return symbol.st_info >> 4 == STB_GNU_UNIQUE; })) {
      return true;
    }
  }
  return false;
}

}  // namespace

void LibraryHandle::Close::operator()(void* handle) const { dlclose(handle); }

LibraryHandle LibraryHandle::Load(const std::string& library) {
  if (IsCutShort(library)) {
    throw Failure("cannot be loaded: the file is shorter than its segments; is it still being written?");
  }
  // All symbols at once: a missing one shall be found now, not in the middle of a call.
  LibraryHandle handle(dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL));
  if (!handle) {
    throw Failure(std::string("cannot be loaded: ") + dlerror());
  }
  return handle;
}

LibraryHandle LibraryHandle::OfLoaded(const std::string& path) {
  return LibraryHandle(dlopen(path.c_str(), RTLD_LAZY | RTLD_NOLOAD));
}

void* LibraryHandle::Symbol(const std::string& name) const { return dlsym(handle_.get(), name.c_str()); }

std::string LibraryHandle::Path() const {
  const link_map* const map = MapOf(handle_.get());
  return map == nullptr ? "" : map->l_name;
}

std::vector<std::string> LibraryHandle::Needed() const {
  std::vector<ElfW(Xword)> offsets;
  const char* names = nullptr;
  ForEachDynamic(handle_.get(), [&](const ElfW(Dyn) & entry) {
    if (entry.d_tag == DT_NEEDED) {
      offsets.push_back(entry.d_un.d_val);
    } else if (entry.d_tag == DT_STRTAB) {
      names = reinterpret_cast<const char*>(entry.d_un.d_ptr);  // NOLINT(performance-no-int-to-ptr)
    }
  });
  std::vector<std::string> needed;
  needed.reserve(offsets.size());
  for (const auto offset : offsets) {
    needed.emplace_back(names + offset);
  }
  return needed;
}

bool LibraryHandle::IsMarkedNoDelete() const {
  bool marked = false;
  ForEachDynamic(handle_.get(), [&](const ElfW(Dyn) & entry) {
    marked = marked || (entry.d_tag == DT_FLAGS_1 && (entry.d_un.d_val & DF_1_NODELETE) != 0);
  });
  return marked;
}

std::string LibraryAt(const void* address) {
  Dl_info info{};
  return dladdr(address, &info) != 0 && info.dli_fname != nullptr ? info.dli_fname : "";
}

bool IsMapped(const std::string& path) {
  std::ifstream maps("/proc/self/maps");
  for (std::string line; std::getline(maps, line);) {
    const std::size_t at = line.find('/');
    if (at == std::string::npos) {
      continue;
    }
    // A file that was replaced meanwhile is marked.
    const std::string file = line.substr(at);
    if (file == path || file == path + " (deleted)") {
      return true;
    }
  }
  return false;
}

std::string WhyMapped(const std::string& path, const std::vector<std::string>& others) {
  for (const std::string& other : others) {
    if (other == path) {
      return "another bundle was loaded from it";
    }
    const LibraryHandle user = LibraryHandle::OfLoaded(other);
    const std::vector<std::string> needed = user ? user.Needed() : std::vector<std::string>();
    if (std::find(needed.begin(), needed.end(), BaseName(path)) != needed.end()) {
      return BaseName(other) + " is linked against it";
    }
  }
  const LibraryHandle library = LibraryHandle::OfLoaded(path);
  if (library && library.IsMarkedNoDelete()) {
    return "it is linked with -z nodelete";
  }
  if (HasUniqueSymbol(path)) {
    return "it exports unique symbols, which pin it; build it with -fno-gnu-unique";
  }
  return "somebody else holds it: another dlopen, or a thread-local object of its code";
}

std::string BaseName(const std::string& path) { return path.substr(path.rfind('/') + 1); }

}  // namespace host
