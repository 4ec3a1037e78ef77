// Formats the records of the queue as lines of the file, and copies the ends of calls into records. A record
// belongs to its caller's thread until it is queued; one thread formats.

#include "tools/recorder/call_record.h"

#include <cxxabi.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

#include "tools/recorder/format/writer.h"

namespace recorder {
namespace {

/// Calls the system once for each thread: the call takes longer than many operations.
std::int32_t ThreadId() {
  thread_local const std::int32_t id = ::gettid();
  return id;
}

std::int64_t Nanoseconds(Recording::Clock::duration time) {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(time).count();
}

/// Reads the values of a record one after the other.
class RecordCursor {
 public:
  explicit RecordCursor(std::string_view& bytes) : bytes_(bytes) {}

  template <class T>
  T Take() {
    T object;
    std::memcpy(&object, bytes_.data(), sizeof object);
    bytes_.remove_prefix(sizeof object);
    return object;
  }

  std::string_view TakeText() {
    const auto size = Take<std::uint32_t>();
    const std::string_view text = bytes_.substr(0, size);
    bytes_.remove_prefix(size);
    return text;
  }

 private:
  std::string_view& bytes_;
};

void FormatList(RecordCursor& cursor, std::string& line) {
  line += '[';
  for (std::uint32_t left = cursor.Take<std::uint32_t>(); left != 0; --left) {
    recording_format::AppendText(line, cursor.TakeText());
    line += left == 1 ? "" : ",";
  }
  line += ']';
}

void FormatMap(RecordCursor& cursor, std::string& line) {
  line += '{';
  for (std::uint32_t left = cursor.Take<std::uint32_t>(); left != 0; --left) {
    recording_format::AppendText(line, cursor.TakeText());
    line += ':';
    FormatList(cursor, line);
    line += left == 1 ? "" : ",";
  }
  line += '}';
}

void FormatValue(RecordCursor& cursor, char kind, std::string& line) {
  switch (kind) {
    case 'b':
      line += cursor.Take<bool>() ? "true" : "false";
      break;
    case 'n':
    case 'i':
      recording_format::AppendInteger(line, cursor.Take<std::int64_t>());
      break;
    case 't':
      recording_format::AppendText(line, cursor.TakeText());
      break;
    case 'l':
      FormatList(cursor, line);
      break;
    default:
      FormatMap(cursor, line);
  }
}

/// Appends a member whose value is an array of values of these kinds.
void FormatArray(RecordCursor& cursor, const char* member, std::string_view kinds, std::string& line) {
  line += member;
  const char* separator = "[";
  for (const char kind : kinds) {
    line += separator;
    FormatValue(cursor, kind, line);
    separator = ",";
  }
  line += kinds.empty() ? "[]" : "]";
}

}  // namespace

void CallRecord::AppendValue(const recording_format::TextList& list) {
  bytes_.Append(static_cast<std::uint32_t>(list.size()));
  for (const std::string& text : list) {
    bytes_.AppendText(text);
  }
}

void CallRecord::AppendValue(const recording_format::TextMap& map) {
  bytes_.Append(static_cast<std::uint32_t>(map.size()));
  for (const auto& [name, list] : map) {
    bytes_.AppendText(name);
    AppendValue(list);
  }
}

void CallRecord::AppendThrown(const std::type_info* type, const char* what) {
  const char* const mangled = type == nullptr ? "" : type->name();
  const std::unique_ptr<char, void (*)(void*)> plain(abi::__cxa_demangle(mangled, nullptr, nullptr, nullptr),
                                                     std::free);
  bytes_.AppendText(plain == nullptr ? mangled : plain.get());
  bytes_.AppendText(what == nullptr ? "" : what);
}

void CallRecord::HandOver(Recording::Clock::time_point end) noexcept {
  header_.start = Nanoseconds(start_ - recording_.Began());
  if (header_.start < 0) {
    return;  // The call began in an earlier recording.
  }
  if (!isComplete_) {
    recording_.Drop();
    return;
  }
  header_.thread = ThreadId();
  header_.duration = Nanoseconds(end - start_);
  bytes_.Replace(0, header_);
  recording_.Add(bytes_.View());
}

void FormatRecord(std::string_view& records, std::string& line) {
  RecordCursor cursor(records);
  const auto header = cursor.Take<RecordHeader>();
  const recording_format::Signature& signature = recording_format::SignatureOf(header.operation);
  line += R"({"op":")";
  line += signature.name;
  FormatArray(cursor, R"(","in":)", signature.in, line);
  if (header.hasBefore) {
    FormatArray(cursor, R"(,"before":)", signature.out, line);
  }
  if (header.hasThrown) {
    line += R"(,"threw":{"type":)";
    recording_format::AppendText(line, cursor.TakeText());
    line += R"(,"what":)";
    recording_format::AppendText(line, cursor.TakeText());
    line += '}';
  } else {
    line += R"(,"result":)";
    FormatValue(cursor, signature.result, line);
  }
  if (!signature.out.empty()) {
    FormatArray(cursor, R"(,"out":)", signature.out, line);
  }
  for (const auto& [member, number] :
       {std::pair{R"(,"thread":)", std::int64_t{header.thread}}, std::pair{R"(,"start":)", header.start},
        std::pair{R"(,"ns":)", header.duration}}) {
    line += member;
    recording_format::AppendInteger(line, number);
  }
  line += "}\n";
}

}  // namespace recorder
