// The text of JSON documents: strings of bytes, parsing with limits, printing.
#include <memory>
#include <set>
#include <vector>

#include "tools/record_json.h"

namespace gromlit {
namespace {

constexpr size_t kLineWidth = 80;

// A list that is shown on one line however long it is: numbers, or lists of numbers.
bool OnlyNumbers(const Json& list) {
  for (const Json& item : list) {
    if (item.is_array() ? !OnlyNumbers(item) : !item.is_number()) return false;
  }
  return true;
}

bool HoldsObjects(const Json& list) {
  for (const Json& item : list) {
    if (item.is_structured() && !item.is_array()) return true;
  }
  return false;
}

void Print(const Json& value, size_t indent, std::string* out) {
  if (!value.is_structured() || value.empty()) {
    *out += value.dump();
    return;
  }
  if (value.is_array() && !HoldsObjects(value)) {
    const std::string line = value.dump();
    if (OnlyNumbers(value) || indent + line.size() <= kLineWidth) {
      *out += line;
      return;
    }
  }
  const std::string margin(indent + 2, ' ');
  *out += value.is_array() ? '[' : '{';
  const char* separator = "\n";
  for (const auto& item : value.items()) {
    *out += separator + margin;
    if (value.is_object()) *out += Json(item.key()).dump() + ": ";
    Print(item.value(), indent + 2, out);
    separator = ",\n";
  }
  *out += "\n" + std::string(indent, ' ');
  *out += value.is_array() ? ']' : '}';
}

}  // namespace

std::string BytesToText(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) {
      text += c;
    } else {
      text += static_cast<char>(0xc0 | byte >> 6);
      text += static_cast<char>(0x80 | (byte & 0x3f));
    }
  }
  return text;
}

bool TextToBytes(std::string_view text, std::string* bytes) {
  bytes->clear();
  for (size_t i = 0; i < text.size(); i++) {
    const auto lead = static_cast<unsigned char>(text[i]);
    if (lead < 0x80) {
      *bytes += text[i];
    } else if (lead <= 0xc3 && i + 1 < text.size()) {
      const auto next = static_cast<unsigned char>(text[++i]);
      *bytes += static_cast<char>((lead & 0x03) << 6 | (next & 0x3f));
    } else {
      return false;
    }
  }
  return true;
}

Json ParseJson(std::string_view text) {
  // Keys seen so far of each object that is open.
  std::vector<std::set<std::string>> open;
  size_t values = 0;
  const auto watch = [&](int depth, Json::parse_event_t event, Json& parsed) {
    if (event == Json::parse_event_t::object_start || event == Json::parse_event_t::array_start) {
      if (depth >= kMaxJsonDepth) throw JsonError("nested too deeply");
    }
    if (event != Json::parse_event_t::key && ++values > kMaxJsonValues)
      throw JsonError("too many values");
    if (event == Json::parse_event_t::object_start) open.emplace_back();
    if (event == Json::parse_event_t::object_end) open.pop_back();
    if (event == Json::parse_event_t::key) {
      const auto& key = parsed.get_ref<const std::string&>();
      if (!open.back().insert(key).second) throw JsonError("key \"" + key + "\" appears twice");
    }
    return true;
  };
  try {
    return Json::parse(text.begin(), text.end(), watch);
  } catch (const Json::exception& e) {
    // Their text begins with "[json.exception.parse_error.101] ", which tells a reader nothing.
    const std::string_view what = e.what();
    const size_t start = what.find("] ");
    throw JsonError("no JSON: " + std::string(start == what.npos ? what : what.substr(start + 2)));
  }
}

std::string PrintJson(const Json& document) {
  std::string out;
  Print(document, 0, &out);
  out += '\n';
  return out;
}

}  // namespace gromlit
