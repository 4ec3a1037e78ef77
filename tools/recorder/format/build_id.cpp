// Reads the build id in the notes of a mapped library. No state, the result is a copy; any thread may call.

#include "tools/recorder/format/build_id.h"

#include <cstddef>
#include <cstring>
#include <string_view>

namespace recording_format {
namespace {

std::string HexDigits(std::string_view bytes) {
  constexpr const char* kDigits = "0123456789abcdef";
  std::string digits;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    digits += {kDigits[byte >> 4], kDigits[byte & 15]};
  }
  return digits;
}

/// The build id in one segment of notes. Each note is a header, a name and a description, the latter two padded
/// to four bytes.
std::string BuildIdIn(std::string_view notes) {
  constexpr std::string_view kName("GNU\0", 4);
  const auto padded = [](std::size_t bytes) { return (bytes + 3) / 4 * 4; };
  ElfW(Nhdr) note;
  while (notes.size() >= sizeof note) {
    std::memcpy(&note, notes.data(), sizeof note);
    notes.remove_prefix(sizeof note);
    const std::size_t description = padded(note.n_namesz);
    const std::size_t end = description + padded(note.n_descsz);
    if (end > notes.size()) {
      break;
    }
    if (note.n_type == NT_GNU_BUILD_ID && notes.substr(0, note.n_namesz) == kName) {
      return HexDigits(notes.substr(description, note.n_descsz));
    }
    notes.remove_prefix(end);
  }
  return {};
}

}  // namespace

std::string BuildIdOf(const dl_phdr_info& library) {
  std::string buildId;
  for (int at = 0; at < library.dlpi_phnum && buildId.empty(); ++at) {
    const ElfW(Phdr)& segment = library.dlpi_phdr[at];
    if (segment.p_type == PT_NOTE) {
      // NOLINTNEXTLINE(performance-no-int-to-ptr)
      const auto* const notes = reinterpret_cast<const char*>(library.dlpi_addr + segment.p_vaddr);
      buildId = BuildIdIn({notes, segment.p_memsz});
    }
  }
  return buildId;
}

}  // namespace recording_format
