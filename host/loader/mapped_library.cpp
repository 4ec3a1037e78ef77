// Reads the dynamic linker's list of libraries. A handle owns one reference to its library, everything else is
// a copy. One thread at a time.

#include "host/loader/mapped_library.h"

#include <dlfcn.h>
#include <link.h>
#include <sys/stat.h>

#include <algorithm>

#include "host/base/problem.h"
#include "host/loader/library_search.h"
#include "tools/recorder/format/build_id.h"

namespace host {
namespace {

/// The string table of a dynamic section. On some architectures its address lacks the load address.
const char* TextsIn(const ElfW(Dyn) * dynamic, ElfW(Addr) loadAddress) {
  for (; dynamic->d_tag != DT_NULL; ++dynamic) {
    if (dynamic->d_tag == DT_STRTAB) {
      const ElfW(Addr) address = dynamic->d_un.d_ptr;
      // NOLINTNEXTLINE(performance-no-int-to-ptr)
      return reinterpret_cast<const char*>(address < loadAddress ? loadAddress + address : address);
    }
  }
  return "";
}

MappedLibrary Describe(const dl_phdr_info& info) {
  MappedLibrary library;
  library.path = RealPath(info.dlpi_name);
  library.buildId = recording_format::BuildIdOf(info);
  const auto* const end = info.dlpi_phdr + info.dlpi_phnum;
  const auto* const segment = std::find_if(
      info.dlpi_phdr, end, [](const ElfW(Phdr) & header) { return header.p_type == PT_DYNAMIC; });
  if (segment == end) {
    return library;
  }
  // NOLINTNEXTLINE(performance-no-int-to-ptr)
  const auto* entry = reinterpret_cast<const ElfW(Dyn)*>(info.dlpi_addr + segment->p_vaddr);
  const char* const texts = TextsIn(entry, info.dlpi_addr);
  for (; entry->d_tag != DT_NULL; ++entry) {
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

}  // namespace

FileIdentity IdentityOf(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) {
    return {};
  }
  return {status.st_dev, status.st_ino, status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
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
  std::vector<MappedLibrary> libraries;
  dl_iterate_phdr(
      [](dl_phdr_info* info, std::size_t /*size*/, void* data) {
        static_cast<std::vector<MappedLibrary>*>(data)->push_back(Describe(*info));
        return 0;
      },
      &libraries);
  libraries.erase(libraries.begin());  // The program itself.
  return libraries;
}

const MappedLibrary* FindMapped(const std::vector<MappedLibrary>& libraries, const std::string& path) {
  const auto found = std::find_if(libraries.begin(), libraries.end(),
                                  [&](const MappedLibrary& library) { return library.path == path; });
  return found == libraries.end() ? nullptr : &*found;
}

std::string KnownHolder(const std::vector<MappedLibrary>& libraries, const std::string& path) {
  const MappedLibrary* const library = FindMapped(libraries, path);
  if (library == nullptr) {
    return {};
  }
  std::string users;
  for (const MappedLibrary& other : libraries) {
    if (&other != library && other.Needs(*library)) {
      users += (users.empty() ? "needed by " : ", ") + BaseName(other.path);
    }
  }
  return users.empty() && library->isNoDelete ? "it is linked with -z nodelete" : users;
}

std::string WhyMapped(const std::vector<MappedLibrary>& libraries, const std::string& path) {
  if (std::string holder = KnownHolder(libraries, path); !holder.empty()) {
    return holder;
  }
  std::string later;
  for (const MappedLibrary* other = FindMapped(libraries, path) + 1; other <= &libraries.back(); ++other) {
    later += (later.empty() ? "loaded after it: " : ", ") + BaseName(other->path);
  }
  return "no loaded library needs it, so a symbol binding or an explicit dlopen holds it; " +
         (later.empty() ? "no library was loaded after it" : later);
}

std::string LibraryAt(const void* address) {
  Dl_info info{};
  return dladdr(address, &info) != 0 && info.dli_fname != nullptr ? info.dli_fname : "";
}

}  // namespace host
