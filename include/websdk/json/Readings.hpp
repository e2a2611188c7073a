#pragma once
/// @file
/// The value readings every request model is decoded with. Each reading takes a
/// possibly absent value (nullptr = key absent) and never throws.

#include "websdk/Export.hpp"
#include "websdk/json/Enum.hpp"
#include "websdk/json/JSON.hpp"

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace websdk {

/// The readings below, by name.
enum class ReadingKind {
  lenientString,
  strictString,
  lenientBool,
  strictBool,
  lenientInt,
  lenientDouble,
  number,
  integer,
  object,
  array,
  stringMap,
  raw,
  enumeration
};
constexpr auto rawValues(ReadingKind) {
  using enum ReadingKind;
  return rawValueTable<ReadingKind>({{lenientString, "lenientString"},
                                     {strictString, "strictString"},
                                     {lenientBool, "lenientBool"},
                                     {strictBool, "strictBool"},
                                     {lenientInt, "lenientInt"},
                                     {lenientDouble, "lenientDouble"},
                                     {number, "number"},
                                     {integer, "integer"},
                                     {object, "object"},
                                     {array, "array"},
                                     {stringMap, "stringMap"},
                                     {raw, "raw"},
                                     {enumeration, "enumeration"}});
}

/// A string gives itself, a number its decimal text (5 -> "5", 5.5 -> "5.5"),
/// a bool "true"/"false", anything else "".
WEBSDK_EXPORT std::string lenientString(const JSON* v);
/// The value only when it is a JSON string.
WEBSDK_EXPORT std::optional<std::string> strictString(const JSON* v);
/// A bool gives itself, a number true when non-zero, a string true when its
/// lower-case form is "true", "y", "t", "yes" or "1"; anything else false.
WEBSDK_EXPORT bool lenientBool(const JSON* v);
/// The value only when it is a JSON bool.
WEBSDK_EXPORT std::optional<bool> strictBool(const JSON* v);
/// A number gives its integer part, a numeric string its number's integer
/// part, a bool 1 or 0, anything else 0. Out-of-range values saturate.
WEBSDK_EXPORT std::int64_t lenientInt(const JSON* v);
/// A number gives itself, a numeric string its number, a bool 1 or 0,
/// anything else 0.
WEBSDK_EXPORT double lenientDouble(const JSON* v);
/// A number, or a bool as 1 or 0; anything else nothing.
WEBSDK_EXPORT std::optional<double> number(const JSON* v);
/// A number's integer part, or a bool as 1 or 0; anything else nothing.
WEBSDK_EXPORT std::optional<std::int64_t> integer(const JSON* v);
/// The value only when it is a JSON object / array.
WEBSDK_EXPORT std::optional<JSONObject> object(const JSON* v);
WEBSDK_EXPORT std::optional<JSONArray> array(const JSON* v);  ///< The value only when it is a JSON array.
/// An object's members as strings (each by the lenient string reading); nothing
/// unless the value is an object.
WEBSDK_EXPORT std::optional<std::map<std::string, std::string>> stringMap(const JSON* v);
/// An array's elements as strings (each by the lenient string reading); nothing
/// unless the value is an array.
WEBSDK_EXPORT std::optional<std::vector<std::string>> stringList(const JSON* v);
/// Whether the value's lenient text is a yes: "true", "True", "yes" or "1"
/// (so a JSON true and 1 are yes too).
WEBSDK_EXPORT bool yesText(const JSON* v);
/// The whole decimal number the value's lenient text spells (an optional sign,
/// then digits only); nothing otherwise, or when out of range.
WEBSDK_EXPORT std::optional<std::int64_t> wholeNumberText(const JSON* v);
/// The value as it stands (JSON null included); nothing only when absent.
WEBSDK_EXPORT std::optional<JSON> raw(const JSON* v);
/// A JSON string that is one of E's raw values.
template <class E>
std::optional<E> enumeration(const JSON* v) {
  if (v == nullptr) return std::nullopt;
  if (const auto* s = v->if_string()) return fromRawValue<E>(std::string_view(*s));
  return std::nullopt;
}

/// A read-only view of a payload dictionary that may be absent, with the
/// readings by key. Copying it is free; it must not outlive the dictionary.
class WEBSDK_EXPORT Fields {
 public:
  /// An absent dictionary.
  Fields() = default;
  /// A view of `object` (absent when null).
  Fields(const JSONObject* object) : object_(object) {}
  /// A view of `object` (absent when it is nothing).
  Fields(const std::optional<JSONObject>& object) : object_(object ? &*object : nullptr) {}
  /// A view of `v` when it is an object, else an absent dictionary.
  static Fields of(const JSON* v) { return Fields(v ? v->if_object() : nullptr); }

  /// No dictionary at all.
  bool absent() const { return object_ == nullptr; }
  /// No dictionary, or one without keys.
  bool empty() const { return object_ == nullptr || object_->empty(); }
  /// Whether `key` is present (JSON null included).
  bool has(std::string_view key) const { return (*this)[key] != nullptr; }
  /// The dictionary, or nullptr when absent.
  const JSONObject* dictionary() const { return object_; }

  /// The value under `key`, or nullptr.
  const JSON* operator[](std::string_view key) const {
    if (object_ == nullptr) return nullptr;
    return object_->if_contains(key);
  }
  /// The dictionary under `key` (absent unless it is an object).
  Fields nested(std::string_view key) const { return of((*this)[key]); }

  /// The reading of the same name, of the value under `key`.
  ///@{
  std::string lenientString(std::string_view key) const { return websdk::lenientString((*this)[key]); }
  std::optional<std::string> strictString(std::string_view key) const { return websdk::strictString((*this)[key]); }
  bool lenientBool(std::string_view key) const { return websdk::lenientBool((*this)[key]); }
  std::optional<bool> strictBool(std::string_view key) const { return websdk::strictBool((*this)[key]); }
  std::int64_t lenientInt(std::string_view key) const { return websdk::lenientInt((*this)[key]); }
  double lenientDouble(std::string_view key) const { return websdk::lenientDouble((*this)[key]); }
  std::optional<double> number(std::string_view key) const { return websdk::number((*this)[key]); }
  std::optional<std::int64_t> integer(std::string_view key) const { return websdk::integer((*this)[key]); }
  std::optional<JSONObject> object(std::string_view key) const { return websdk::object((*this)[key]); }
  std::optional<JSONArray> array(std::string_view key) const { return websdk::array((*this)[key]); }
  std::optional<JSON> raw(std::string_view key) const { return websdk::raw((*this)[key]); }
  std::optional<std::vector<std::string>> stringList(std::string_view key) const {
    return websdk::stringList((*this)[key]);
  }
  std::optional<std::map<std::string, std::string>> stringMap(std::string_view key) const {
    return websdk::stringMap((*this)[key]);
  }
  template <class E>
  std::optional<E> enumeration(std::string_view key) const {
    return websdk::enumeration<E>((*this)[key]);
  }
  ///@}

 private:
  const JSONObject* object_ = nullptr;
};

}  // namespace websdk
