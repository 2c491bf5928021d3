// Reading the objects of a JSON document: every value is looked at before it is believed, and what
// is wrong with one is told with its place. For tools/record_json.cc, which knows the records.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "core/strings.h"
#include "core/value_names.h"
#include "tools/json_text.h"

namespace gromlit {

[[noreturn]] inline void Fail(const std::string& where, const std::string& what) {
  throw JsonError(where.empty() ? what : where + ": " + what);
}

// A value as messages show it: the beginning of a word, or what else it is.
inline std::string Shown(const Json& value) {
  if (value.is_object()) return "an object";
  if (value.is_array())
    return "a list" + (value.empty() ? "" : " of " + std::to_string(value.size()));
  if (!value.is_string()) return value.dump();
  const auto& text = value.get_ref<const std::string&>();
  return "\"" + text.substr(0, kShownWord) + (text.size() > kShownWord ? "...\"" : "\"");
}

[[noreturn]] inline void FailExpected(const std::string& where, const std::string& what,
                                      const Json& value) {
  Fail(where, what + " expected, not " + Shown(value));
}

// The place of an item of a list.
inline std::string Item(const std::string& where, size_t index) {
  return where + "[" + std::to_string(index) + "]";
}

// One object of a document; remembers which of its keys were asked for.
class ObjectReader {
 public:
  ObjectReader(const Json& object, std::string where) : object_(object), where_(std::move(where)) {
    if (!object.is_object()) FailExpected(where_, "an object is", object);
  }

  const Json* Find(const char* key) {
    asked_.emplace_back(key);
    const auto found = object_.find(key);
    return found == object_.end() ? nullptr : &*found;
  }

  std::string Where(const char* key) const { return where_.empty() ? key : where_ + "." + key; }

  template <typename Int>
  void Number(const char* key, Int* out) {
    if (const Json* value = Find(key)) *out = ToNumber<Int>(*value, Where(key));
  }

  // The same for a field whose values may have names: a number or a name; or, where it is made of
  // bits, a list of both.
  template <typename Int>
  void Named(const char* key, Int* out) {
    const Json* value = Find(key);
    if (value == nullptr) return;
    const Naming naming = NamingOf(key);
    if (naming == Naming::kBits && value->is_array()) {
      Int bits = 0;
      for (size_t i = 0; i < value->size(); i++) {
        const std::string where = Where(key) + "[" + std::to_string(i) + "]";
        bits = static_cast<Int>(bits | ToValue<Int>(key, (*value)[i], where));
      }
      *out = bits;
    } else if (naming != Naming::kNone) {
      *out = ToValue<Int>(key, *value, Where(key));
    } else {
      *out = ToNumber<Int>(*value, Where(key));
    }
  }

  // Text of a NUL-terminated field: ends at its first NUL, must leave room for one.
  void Name(const char* key, std::span<char> field) {
    std::string bytes = Bytes(key);
    bytes.resize(std::min(bytes.find('\0'), bytes.size()));
    CheckLength(key, bytes, field.size() - 1);
    CopyText(field, bytes);
  }

  // All bytes of a reserved field.
  void Raw(const char* key, std::span<char> field) { ToRaw(Find(key), Where(key), field); }

  std::string Bytes(const char* key) {
    const Json* value = Find(key);
    return value == nullptr ? "" : ToBytes(*value, Where(key));
  }

  // The list of that key, of at most limit items; null when absent.
  const Json* List(const char* key, size_t limit) {
    const Json* value = Find(key);
    if (value == nullptr) return nullptr;
    if (!value->is_array()) FailExpected(Where(key), "a list is", *value);
    if (value->size() > limit) {
      Fail(Where(key), "has " + std::to_string(value->size()) + " items, at most " +
                           std::to_string(limit) + " are possible");
    }
    return value;
  }

  void NoOtherKeys() const {
    for (const auto& item : object_.items()) {
      if (std::find(asked_.begin(), asked_.end(), item.key()) == asked_.end())
        Fail(where_, "unknown key " + Shown(Json(item.key())));
    }
  }

  template <typename Int>
  static Int ToNumber(const Json& value, const std::string& where) {
    constexpr int64_t low = std::numeric_limits<Int>::min();
    constexpr int64_t high = std::numeric_limits<Int>::max();
    if (!value.is_number_integer()) FailExpected(where, "a whole number is", value);
    const bool fits = value.is_number_unsigned()
                          ? value.get<uint64_t>() <= static_cast<uint64_t>(high)
                          : value.get<int64_t>() >= low && value.get<int64_t>() <= high;
    if (!fits) {
      Fail(where,
           value.dump() + " lies outside " + std::to_string(low) + ".." + std::to_string(high));
    }
    return value.get<Int>();
  }

  static std::string ToBytes(const Json& value, const std::string& where) {
    if (!value.is_string()) FailExpected(where, "a string is", value);
    std::string bytes;
    if (!TextToBytes(value.get_ref<const std::string&>(), &bytes))
      Fail(where, "holds a character above U+00FF in " + Shown(value));
    return bytes;
  }

  static void ToRaw(const Json* value, const std::string& where, std::span<char> field) {
    if (value == nullptr) return;
    const std::string bytes = ToBytes(*value, where);
    if (bytes.size() > field.size())
      Fail(where, "longer than " + std::to_string(field.size()) + " bytes: " + Shown(*value));
    std::copy(bytes.begin(), bytes.end(), field.begin());
  }

  static void ToPair(const Json& value, const std::string& where, uint16_t* first,
                     uint16_t* second) {
    if (!value.is_array() || value.size() != 2) FailExpected(where, "a pair of numbers is", value);
    *first = ToNumber<uint16_t>(value[0], where);
    *second = ToNumber<uint16_t>(value[1], where);
  }

 private:
  template <typename Int>
  static Int ToValue(const char* key, const Json& value, const std::string& where) {
    if (!value.is_string()) return ToNumber<Int>(value, where);
    const ValueName* known = FindValueName(key, value.get_ref<const std::string&>());
    if (known != nullptr) return static_cast<Int>(known->value);
    std::string names;
    for (const ValueName& row : kValueNames)
      if (row.field == key) names += (names.empty() ? "" : ", ") + std::string(row.name);
    Fail(where, Shown(value) + " is no number and none of " + names);
  }

  void CheckLength(const char* key, const std::string& bytes, size_t limit) const {
    if (bytes.size() <= limit) return;
    Fail(Where(key),
         "longer than " + std::to_string(limit) + " bytes: " + Shown(Json(BytesToText(bytes))));
  }

  const Json& object_;
  std::string where_;
  std::vector<std::string> asked_;
};

}  // namespace gromlit
