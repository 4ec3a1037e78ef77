#include "host/mapped_library.h"

#include <dlfcn.h>
#include <elf.h>
#include <link.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <new>
#include <optional>
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

/// A regular file of which parts are read. One that cannot be read, or is none, is as good as empty.
class BinaryFile {
 public:
  explicit BinaryFile(const std::string& path) {
    std::error_code error;
    if (std::filesystem::is_regular_file(path, error)) {
      size_ = std::filesystem::file_size(path, error);
      stream_.open(path, std::ios::binary);
    }
    if (error || !stream_.is_open()) {
      size_ = 0;
    }
  }

  [[nodiscard]] bool Has(std::uint64_t offset, std::uint64_t bytes) const {
    return offset <= size_ && bytes <= size_ - offset;
  }

  /// The `count` objects at `offset`; none when the file ends before.
  template <class T>
  std::vector<T> Read(std::uint64_t offset, std::uint64_t count) {
    if (count > size_ / sizeof(T) || !Has(offset, count * sizeof(T))) {
      return {};
    }
    std::vector<T> objects(count);
    stream_.seekg(static_cast<std::streamoff>(offset));
    stream_.read(reinterpret_cast<char*>(objects.data()), static_cast<std::streamsize>(count * sizeof(T)));
    return stream_ ? objects : std::vector<T>();
  }

 private:
  std::ifstream stream_;
  std::uint64_t size_ = 0;
};

/// The header of an ELF file of this process's own width and byte order; nothing for anything else.
std::optional<ElfW(Ehdr)> HeaderOf(BinaryFile& file) {
  constexpr unsigned char kOwnClass = sizeof(void*) == 8 ? ELFCLASS64 : ELFCLASS32;
  constexpr unsigned char kOwnOrder = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ ? ELFDATA2LSB : ELFDATA2MSB;
  const auto headers = file.Read<ElfW(Ehdr)>(0, 1);
  const bool isElf = !headers.empty() && std::memcmp(headers[0].e_ident, ELFMAG, SELFMAG) == 0 &&
                     headers[0].e_ident[EI_CLASS] == kOwnClass && headers[0].e_ident[EI_DATA] == kOwnOrder;
  return isElf ? std::optional(headers[0]) : std::nullopt;
}

/// Whether the file lacks a part of what would be mapped. The dynamic linker maps it all the same, and the
/// process ends where it touches what is missing.
bool IsCutShort(const std::string& path) {
  BinaryFile file(path);
  const auto header = HeaderOf(file);
  if (!header) {
    return false;
  }
  const auto segments = file.Read<ElfW(Phdr)>(header->e_phoff, header->e_phnum);
  return segments.size() != header->e_phnum ||
         std::any_of(segments.begin(), segments.end(), [&](const ElfW(Phdr) & segment) {
           return segment.p_type == PT_LOAD && !file.Has(segment.p_offset, segment.p_filesz);
         });
}

/// Whether the library exports a unique-binding symbol, which makes the dynamic linker keep it for good.
bool HasUniqueSymbol(const std::string& path) {
  BinaryFile file(path);
  const auto header = HeaderOf(file);
  if (!header) {
    return false;
  }
  for (const ElfW(Shdr) & section : file.Read<ElfW(Shdr)>(header->e_shoff, header->e_shnum)) {
    if (section.sh_type != SHT_DYNSYM) {
      continue;
    }
    const auto symbols = file.Read<ElfW(Sym)>(section.sh_offset, section.sh_size / sizeof(ElfW(Sym)));
    if (std::any_of(symbols.begin(), symbols.end(),
                    [](const ElfW(Sym) & symbol) { return symbol.st_info >> 4 == STB_GNU_UNIQUE; })) {
      return true;
    }
  }
  return false;
}

/// The directories in which the dynamic linker looks for a name, its cache aside.
std::vector<std::string> SearchPath() {
  const std::unique_ptr<void, int (*)(void*)> program(dlopen(nullptr, RTLD_LAZY), dlclose);
  Dl_serinfo sizes;
  if (program == nullptr || dlinfo(program.get(), RTLD_DI_SERINFOSIZE, &sizes) != 0) {
    return {};
  }
  const std::unique_ptr<char[]> memory(new char[sizes.dls_size]);
  auto* const path = new (memory.get()) Dl_serinfo(sizes);
  std::vector<std::string> directories;
  if (dlinfo(program.get(), RTLD_DI_SERINFO, path) == 0) {
    for (unsigned i = 0; i < path->dls_cnt; ++i) {
      directories.emplace_back(path->dls_serpath[i].dls_name);
    }
  }
  return directories;
}

/// The files that the dynamic linker may take for `library`: in the directories of its path, and in those
/// below them that are for some processors.
std::vector<std::string> CandidatesFor(const std::string& library) {
  if (library.find('/') != std::string::npos) {
    return {library};
  }
  const std::string behind = "/" + library;
  std::vector<std::string> files;
  for (const std::string& directory : SearchPath()) {
    files.push_back(directory + behind);
    std::error_code none;
    for (const auto& entry : std::filesystem::directory_iterator(directory + "/glibc-hwcaps", none)) {
      files.push_back(entry.path().string() + behind);
    }
  }
  return files;
}

}  // namespace

void LibraryHandle::Close::operator()(void* handle) const { dlclose(handle); }

LibraryHandle LibraryHandle::Load(const std::string& library) {
  for (const std::string& file : CandidatesFor(library)) {
    if (IsCutShort(file)) {
      throw Failure("cannot be loaded: the file " + file +
                    " is shorter than its segments; is it still being written?");
    }
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
