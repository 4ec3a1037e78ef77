// Reads the dynamic linker's list of libraries and the process's mappings. A handle owns one reference to
// its library, everything else is a copy. One thread at a time.

#include "host/loader/mapped_library.h"

#include <dlfcn.h>
#include <link.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <string_view>
#include <tuple>

#include "host/base/problem.h"
#include "host/loader/library_search.h"

namespace host {
namespace {

std::string HexDigits(std::string_view bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string digits;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    digits += {kDigits[byte >> 4], kDigits[byte & 15]};
  }
  return digits;
}

/// The build id in the notes of one segment; empty when there is none.
std::string BuildIdIn(std::string_view notes) {
  static constexpr char kOwnerWithNul[] = "GNU";
  constexpr std::string_view kOwner(kOwnerWithNul, sizeof kOwnerWithNul);
  const auto padded = [](std::size_t bytes) { return (bytes + 3) / 4 * 4; };
  ElfW(Nhdr) note;
  while (notes.size() >= sizeof note) {
    std::memcpy(&note, notes.data(), sizeof note);
    notes.remove_prefix(sizeof note);
    const std::size_t value = padded(note.n_namesz);
    const std::size_t end = value + padded(note.n_descsz);
    if (end > notes.size()) {
      break;
    }
    if (note.n_type == NT_GNU_BUILD_ID && notes.substr(0, note.n_namesz) == kOwner) {
      return HexDigits(notes.substr(value, note.n_descsz));
    }
    notes.remove_prefix(end);
  }
  return {};
}

using BuildIds = std::map<const void*, std::string>;  // by the address of the dynamic section

int AddBuildId(dl_phdr_info* info, std::size_t /*size*/, void* data) {
  const void* dynamic = nullptr;
  std::string buildId;
  for (const ElfW(Phdr)* header = info->dlpi_phdr; header != info->dlpi_phdr + info->dlpi_phnum; ++header) {
    // NOLINTNEXTLINE(performance-no-int-to-ptr)
    const auto* const at = reinterpret_cast<const char*>(info->dlpi_addr + header->p_vaddr);
    if (header->p_type == PT_DYNAMIC) {
      dynamic = at;
    } else if (header->p_type == PT_NOTE && buildId.empty()) {
      buildId = BuildIdIn({at, header->p_memsz});
    }
  }
  (*static_cast<BuildIds*>(data))[dynamic] = buildId;
  return 0;
}

/// The string table of the dynamic section. On some architectures its address lacks the load address.
const char* TextsOf(const link_map& map) {
  for (const ElfW(Dyn)* entry = map.l_ld; entry->d_tag != DT_NULL; ++entry) {
    if (entry->d_tag == DT_STRTAB) {
      const ElfW(Addr) address = entry->d_un.d_ptr;
      // NOLINTNEXTLINE(performance-no-int-to-ptr)
      return reinterpret_cast<const char*>(address < map.l_addr ? map.l_addr + address : address);
    }
  }
  return "";
}

MappedLibrary Describe(const link_map& map, const BuildIds& buildIds) {
  MappedLibrary library;
  library.path = RealPath(map.l_name);
  const auto buildId = buildIds.find(map.l_ld);
  library.buildId = buildId == buildIds.end() ? "" : buildId->second;
  const char* const texts = TextsOf(map);
  for (const ElfW(Dyn)* entry = map.l_ld; entry->d_tag != DT_NULL; ++entry) {
    if (entry->d_tag == DT_NEEDED) {
      library.needed.emplace_back(texts + entry->d_un.d_val);
    } else if (entry->d_tag == DT_SONAME) {
      library.soname = texts + entry->d_un.d_val;
    } else if (entry->d_tag == DT_FLAGS_1) {
      library.isNoDelete = (entry->d_un.d_val & DF_1_NODELETE) != 0;
    }
  }
  return library;
}

std::string Join(const std::vector<std::string>& names) {
  std::string all;
  for (const std::string& name : names) {
    all += (all.empty() ? "" : ", ") + name;
  }
  return all;
}

}  // namespace

bool FileIdentity::operator==(const FileIdentity& other) const {
  return std::tie(device, inode, size, modified) ==
         std::tie(other.device, other.inode, other.size, other.modified);
}

FileIdentity IdentityOf(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) {
    return {};
  }
  return {status.st_dev, status.st_ino, static_cast<std::uint64_t>(status.st_size),
          std::int64_t{status.st_mtim.tv_sec} * 1'000'000'000 + status.st_mtim.tv_nsec};
}

void LibraryHandle::Close::operator()(void* handle) const { dlclose(handle); }

LibraryHandle LibraryHandle::Load(const std::string& library) {
  // RTLD_NOW resolves all symbols at once: a missing one must fail the load, not a later call.
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
  const link_map* map = nullptr;
  return dlinfo(handle_.get(), RTLD_DI_LINKMAP, &map) == 0 ? map->l_name : "";
}

bool MappedLibrary::Needs(const MappedLibrary& other) const {
  return std::any_of(needed.begin(), needed.end(), [&](const std::string& name) {
    return name == other.soname || name == other.path || name == BaseName(other.path);
  });
}

std::vector<MappedLibrary> MappedLibraries() {
  BuildIds buildIds;
  dl_iterate_phdr(AddBuildId, &buildIds);
  const std::unique_ptr<void, int (*)(void*)> program(dlopen(nullptr, RTLD_LAZY), dlclose);
  const link_map* map = nullptr;
  std::vector<MappedLibrary> libraries;
  // The first one is the program itself.
  if (program != nullptr && dlinfo(program.get(), RTLD_DI_LINKMAP, &map) == 0) {
    while ((map = map->l_next) != nullptr) {
      libraries.push_back(Describe(*map, buildIds));
    }
  }
  return libraries;
}

const MappedLibrary* FindMapped(const std::vector<MappedLibrary>& libraries, const std::string& path) {
  const auto found = std::find_if(libraries.begin(), libraries.end(),
                                  [&](const MappedLibrary& library) { return library.path == path; });
  return found == libraries.end() ? nullptr : &*found;
}

std::string WhyMapped(const std::vector<MappedLibrary>& libraries, const std::string& path) {
  const MappedLibrary* const library = FindMapped(libraries, path);
  std::vector<std::string> users;
  std::vector<std::string> later;
  for (const MappedLibrary& other : libraries) {
    if (&other != library && other.Needs(*library)) {
      users.push_back(BaseName(other.path));
    }
    if (&other > library) {
      later.push_back(BaseName(other.path));
    }
  }
  if (!users.empty()) {
    return "needed by " + Join(users);
  }
  if (library->isNoDelete) {
    return "it is linked with -z nodelete";
  }
  return "no loaded library needs it, so a symbol binding or an explicit dlopen holds it; " +
         (later.empty() ? "no library was loaded after it" : "loaded after it: " + Join(later));
}

std::string LibraryAt(const void* address) {
  Dl_info info{};
  return dladdr(address, &info) != 0 && info.dli_fname != nullptr ? info.dli_fname : "";
}

}  // namespace host
