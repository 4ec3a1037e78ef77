// Parses the lines of a recording and checks them against the signatures. The stream is borrowed; the values
// are copies. One thread at a time for each reader.

#include "tools/recorder/format/reader.h"

#include <istream>
#include <limits>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string_view>

namespace recording_format {
namespace {

using nlohmann::json;

/// What is wrong with a line. `ParseLine` catches it.
class LineError : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

const json& Member(const json& object, const char* name) {
  const auto found = object.find(name);
  if (found == object.end()) {
    throw LineError(std::string("no member \"") + name + '"');
  }
  return *found;
}

/// The bytes of a text: the number of each character is one byte.
std::string Bytes(const std::string& utf8, const char* name) {
  std::string bytes;
  bytes.reserve(utf8.size());
  for (std::size_t at = 0; at < utf8.size(); ++at) {
    const auto first = static_cast<unsigned char>(utf8[at]);
    if (first < 0x80) {
      bytes += utf8[at];
    } else if (first < 0xC4) {  // U+0080 to U+00FF, in two bytes; the parser has checked the second.
      const auto second = static_cast<unsigned char>(utf8[++at]);
      bytes += static_cast<char>(((first & 0x03U) << 6U) | (second & 0x3FU));
    } else {
      throw LineError(std::string("\"") + name + "\" holds a character above U+00FF");
    }
  }
  return bytes;
}

std::string TextOf(const json& value, const char* name) {
  if (!value.is_string()) {
    throw LineError(std::string("\"") + name + "\" is not a text");
  }
  return Bytes(value.get_ref<const std::string&>(), name);
}

std::int64_t IntegerOf(const json& value, const char* name, std::int64_t least, std::int64_t most) {
  // The parser stores an integer that does not fit as an unsigned or a floating number.
  const bool isSigned =
      value.is_number_integer() &&
      (!value.is_number_unsigned() ||
       value.get<std::uint64_t>() <= std::uint64_t{std::numeric_limits<std::int64_t>::max()});
  if (!isSigned || value.get<std::int64_t>() < least || value.get<std::int64_t>() > most) {
    throw LineError(std::string("\"") + name + "\" is not an integer from " + std::to_string(least) + " to " +
                    std::to_string(most));
  }
  return value.get<std::int64_t>();
}

std::int64_t AnyInteger(const json& value, const char* name) {
  return IntegerOf(value, name, std::numeric_limits<std::int64_t>::min(),
                   std::numeric_limits<std::int64_t>::max());
}

std::int64_t Count(const json& object, const char* name) {
  return IntegerOf(Member(object, name), name, 0, std::numeric_limits<std::int64_t>::max());
}

TextList ListOf(const json& value, const char* name) {
  if (!value.is_array()) {
    throw LineError(std::string("\"") + name + "\" is not a list");
  }
  TextList list;
  list.reserve(value.size());
  for (const json& item : value) {
    list.push_back(TextOf(item, name));
  }
  return list;
}

TextMap MapOf(const json& value, const char* name) {
  if (!value.is_object()) {
    throw LineError(std::string("\"") + name + "\" is not a map");
  }
  TextMap map;
  for (const auto& [key, list] : value.items()) {
    map.emplace(Bytes(key, name), ListOf(list, name));
  }
  return map;
}

/// The value as the kind that a signature requires.
Value ValueOf(const json& value, char kind, const char* name) {
  switch (kind) {
    case 'b':
      if (!value.is_boolean()) {
        throw LineError(std::string("\"") + name + "\" is not true or false");
      }
      return value.get<bool>();
    case 'n':
      return IntegerOf(value, name, std::numeric_limits<std::int32_t>::min(),
                       std::numeric_limits<std::int32_t>::max());
    case 'i':
      return AnyInteger(value, name);
    case 't':
      return TextOf(value, name);
    case 'l':
      return ListOf(value, name);
    default:
      return MapOf(value, name);
  }
}

std::vector<Value> ValuesOf(const json& object, const char* name, std::string_view kinds) {
  const json& array = Member(object, name);
  if (!array.is_array() || array.size() != kinds.size()) {
    throw LineError(std::string("\"") + name + "\" is not an array of " + std::to_string(kinds.size()));
  }
  std::vector<Value> values;
  for (std::size_t at = 0; at < kinds.size(); ++at) {
    values.push_back(ValueOf(array[at], kinds[at], name));
  }
  return values;
}

/// The out values at the start of a call that are not written because all of them are 0 or empty.
std::vector<Value> Defaults(std::string_view kinds) {
  std::vector<Value> values;
  for (const char kind : kinds) {
    values.push_back(kind == 'l'   ? Value(TextList())
                     : kind == 'm' ? Value(TextMap())
                                   : Value(std::int64_t{0}));
  }
  return values;
}

Head HeadOf(const json& object) {
  if (const std::int64_t version = AnyInteger(Member(object, "recording"), "recording"); version != 1) {
    throw LineError("format version " + std::to_string(version) + " is not supported, only 1 is");
  }
  Head head;
  head.time = TextOf(Member(object, "time"), "time");
  head.operations = ListOf(Member(object, "operations"), "operations");
  head.every = Count(object, "every");
  head.library = TextOf(Member(object, "library"), "library");
  head.buildId = TextOf(Member(object, "build_id"), "build_id");
  head.configDir = TextOf(Member(object, "config_dir"), "config_dir");
  head.alarmConfig = TextOf(Member(object, "alarm_config"), "alarm_config");
  return head;
}

Tail TailOf(const json& object) {
  return {TextOf(Member(object, "end"), "end"), Count(object, "records"), Count(object, "dropped")};
}

Record RecordOf(const json& object) {
  const std::string name = TextOf(Member(object, "op"), "op");
  const std::optional<Operation> operation = FindOperation(name);
  if (!operation) {
    throw LineError("the interface has no operation of the name in \"op\"");
  }
  const Signature& signature = SignatureOf(*operation);
  Record record;
  record.operation = *operation;
  record.in = ValuesOf(object, "in", signature.in);
  record.before =
      object.contains("before") ? ValuesOf(object, "before", signature.out) : Defaults(signature.out);
  record.out = signature.out.empty() ? std::vector<Value>() : ValuesOf(object, "out", signature.out);
  if (object.contains("threw")) {
    const json& thrown = object["threw"];
    record.thrown = Thrown{TextOf(Member(thrown, "type"), "type"), TextOf(Member(thrown, "what"), "what")};
  } else {
    record.result = ValueOf(Member(object, "result"), signature.result, "result");
  }
  record.thread = Count(object, "thread");
  record.start = Count(object, "start");
  record.duration = Count(object, "ns");
  return record;
}

/// Reads a line into `text`, at most `most` bytes of it and without the line end. Returns the number of bytes
/// read, line end included; 0 at the end of the file.
std::uint64_t ReadLine(std::streambuf& buffer, std::size_t most, std::string& text) {
  text.clear();
  constexpr int kEnd = std::char_traits<char>::eof();
  std::uint64_t bytes = 0;
  for (int byte = buffer.sbumpc(); byte != kEnd; byte = buffer.sbumpc()) {
    ++bytes;
    if (byte == '\n') {
      break;
    }
    if (text.size() < most) {
      text += static_cast<char>(byte);
    }
  }
  return bytes;
}

}  // namespace

Line ParseLine(const std::string& text) {
  try {
    const json object = json::parse(text);
    if (!object.is_object()) {
      throw LineError("not a JSON object");
    }
    if (object.contains("op")) {
      return RecordOf(object);
    }
    if (object.contains("recording")) {
      return HeadOf(object);
    }
    if (object.contains("end")) {
      return TailOf(object);
    }
    throw LineError("no member \"op\", \"recording\" or \"end\"");
  } catch (const json::parse_error& error) {
    const bool isTruncated = error.byte > text.size();
    return Problem{error.byte, isTruncated ? "the line is truncated" : "not JSON"};
  } catch (const json::out_of_range&) {  // Without a position, unlike a syntax error.
    return Problem{1, "a number is larger than a double can be"};
  } catch (const LineError& error) {
    return Problem{1, error.what()};
  }
}

std::optional<Line> Reader::Next() {
  std::uint64_t bytes = 0;
  try {
    bytes = file_.good() ? ReadLine(*file_.rdbuf(), maxLine_ + 1, text_) : 0;
  } catch (const std::ios_base::failure&) {  // From the stream's buffer: a read failed.
    file_.setstate(std::ios::badbit);
    return std::nullopt;
  }
  if (bytes == 0) {
    file_.setstate(std::ios::eofbit);
    return std::nullopt;
  }
  bytes_ += bytes;
  ++number_;
  if (text_.size() > maxLine_) {
    return Problem{maxLine_ + 1, "the line is longer than " + std::to_string(maxLine_) + " bytes"};
  }
  return ParseLine(text_);
}

}  // namespace recording_format
