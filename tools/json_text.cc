#include "tools/json_text.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace gromlit {
namespace {

constexpr size_t kLineWidth = 80;

// A value as one line of text. What a terminal would take for commands is escaped, too.
std::string Line(const Json& value) {
  const std::string text = value.dump();
  std::string line;
  for (size_t i = 0; i < text.size(); i++) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const bool second = byte == 0xc2 && i + 1 < text.size() &&
                        static_cast<unsigned char>(text[i + 1]) < 0xa0;  // U+0080..U+009F
    if (byte != 0x7f && !second) {
      line += text[i];
      continue;
    }
    constexpr char kDigits[] = "0123456789abcdef";
    const auto code = static_cast<unsigned char>(second ? text[++i] : text[i]);
    line += {'\\', 'u', '0', '0', kDigits[code >> 4], kDigits[code & 15]};
  }
  return line;
}

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
    *out += Line(value);
    return;
  }
  if (value.is_array() && !HoldsObjects(value)) {
    const std::string line = Line(value);
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
    if (value.is_object()) *out += Line(Json(item.key())) + ": ";
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

namespace {

// Where a parser is: the objects and lists that are open, outermost first.
class OpenValues {
 public:
  // An event of the parser; throws JsonError for what no document of ours has.
  void See(Json::parse_event_t event, const Json& parsed) {
    using Event = Json::parse_event_t;
    if (event == Event::key) {
      Key(parsed.get_ref<const std::string&>());
      return;
    }
    if (event == Event::object_end || event == Event::array_end) {
      open_.pop_back();
    } else if (++values_ > kMaxJsonValues) {
      Fail("too many values");
    }
    if (event == Event::object_start || event == Event::array_start) {
      if (open_.size() >= kMaxJsonDepth) Fail("nested too deeply");
      open_.push_back({.object = event == Event::object_start, .keys = {}, .index = 0});
    } else if (!open_.empty()) {
      open_.back().index++;  // a value is complete
    }
  }

 private:
  struct Open {
    bool object;
    std::vector<std::string> keys;  // of an object so far, at most kMaxJsonKeys
    size_t index;                   // of a list: items so far
  };

  void Key(const std::string& key) {
    std::vector<std::string>& keys = open_.back().keys;
    if (std::find(keys.begin(), keys.end(), key) != keys.end()) {
      open_.pop_back();
      Fail("key \"" + key.substr(0, kShownWord) + "\" appears twice");
    }
    if (keys.size() == kMaxJsonKeys) {
      open_.pop_back();
      Fail("more than " + std::to_string(kMaxJsonKeys) + " keys in one object");
    }
    keys.push_back(key);
  }

  // With the place of the value that is being read, as record_json.cc names it.
  [[noreturn]] void Fail(const std::string& what) const {
    std::string where;
    for (const Open& open : open_) {
      if (!open.object) {
        where += "[" + std::to_string(open.index) + "]";
      } else {
        where += (where.empty() ? "" : ".") + open.keys.back().substr(0, kShownWord);
      }
    }
    throw JsonError(where.empty() ? what : where + ": " + what);
  }

  std::vector<Open> open_;
  size_t values_ = 0;
};

}  // namespace

Json ParseJson(std::string_view text) {
  OpenValues open;
  const auto watch = [&](int, Json::parse_event_t event, Json& parsed) {
    open.See(event, parsed);
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
