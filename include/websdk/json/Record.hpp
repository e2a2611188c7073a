#pragma once
/// @file
/// Records: plain aggregates whose fields are listed once, with their names (and,
/// where the JSON key differs, their keys). Equality, JSON encoding and the
/// description used by logs and the inspector all come from that one list.
///
/// ~~~{.cpp}
///   struct WebSDKApplyCouponRequestModel {
///     std::optional<JSONObject> tenant;
///     double cartValue = 0;
///     ...
///     WEBSDK_RECORD(WebSDKApplyCouponRequestModel, tenant, cartValue, ...)
///   };
/// ~~~
///
/// Records encoded with keys other than their field names list (field, "key")
/// pairs instead: WEBSDK_KEYED_RECORD(OrbisData, (planId, "plan_id"), ...).

#include "websdk/json/Enum.hpp"
#include "websdk/json/JSON.hpp"
#include "websdk/json/Preprocessor.hpp"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace websdk {

/// One field of a record's list: member `M` of `T`, with its name and key.
template <class T, class M>
struct Field {
  std::string_view name;  ///< The field's name: descriptions use it.
  M T::*member;           ///< The member.
  std::string_view key;   ///< The JSON key the record encodes with.
};

/// A field of the list, its key its name unless given.
template <class T, class M>
constexpr Field<T, M> field(std::string_view name, M T::*member, std::string_view key = {}) {
  return {name, member, key.empty() ? name : key};
}

template <class T>
concept Record = requires {
  T::fields();
};

/// Whether encoding writes each field under its key or under its name.
enum class FieldNaming { keys, names };

namespace detail {

struct AnyValue {
  template <class T>
  operator T() const;  // never defined: only counts aggregate members
};

template <class T, std::size_t... I>
constexpr bool bracesInit(std::index_sequence<I...>) {
  return requires { T{(void(I), AnyValue{})...}; };
}

template <class T, std::size_t N = 0>
constexpr std::size_t memberCount() {
  if constexpr (N > 64) {
    return N;
  } else if constexpr (bracesInit<T>(std::make_index_sequence<N + 1>{})) {
    return memberCount<T, N + 1>();
  } else {
    return N;
  }
}

template <class Tuple>
constexpr bool uniqueNames(const Tuple& fields) {
  return std::apply(
      [](const auto&... f) {
        const std::string_view names[] = {f.name..., {}};
        const std::string_view keys[] = {f.key..., {}};
        constexpr std::size_t n = sizeof...(f);
        for (std::size_t i = 0; i < n; ++i)
          for (std::size_t j = 0; j < i; ++j)
            if (names[i] == names[j] || keys[i] == keys[j]) return false;
        return true;
      },
      fields);
}

template <class T>
struct IsOptional : std::false_type {};
template <class T>
struct IsOptional<std::optional<T>> : std::true_type {};

}  // namespace detail

/// Checks a record's field list at compile time: every member listed, no name
/// or key twice.
template <Record T>
constexpr bool checkRecord() {
  static_assert(std::is_aggregate_v<T>, "a record is a plain aggregate");
  static_assert(std::tuple_size_v<decltype(T::fields())> == detail::memberCount<T>(),
                "the field list must name every member of the record");
  static_assert(detail::uniqueNames(T::fields()), "field names and keys must be unique");
  return true;
}

/// Turning a field's value into JSON. Enumerations give their raw values, nested
/// records objects, shared references their object (or null when empty).
template <class V>
JSON toJSONValue(const V& v, FieldNaming naming);

/// A record as a JSON object, each field under its key or its name; an empty
/// optional leaves no key.
template <Record T>
JSONObject toJSONObject(const T& record, FieldNaming naming = FieldNaming::keys) {
  static_assert(checkRecord<T>());
  JSONObject out;
  std::apply(
      [&](const auto&... f) {
        auto put = [&](const auto& fld) {
          const auto& value = record.*(fld.member);
          const std::string_view name = naming == FieldNaming::keys ? fld.key : fld.name;
          using M = std::remove_cvref_t<decltype(value)>;
          if constexpr (detail::IsOptional<M>::value) {
            if (value) out.emplace(name, toJSONValue(*value, naming));  // absent optionals leave no key
          } else {
            out.emplace(name, toJSONValue(value, naming));
          }
        };
        (put(f), ...);
      },
      T::fields());
  return out;
}

/// A record encoded with its keys: what a response model sends to the page.
template <Record T>
JSON toJSON(const T& record) {
  return toJSONObject(record, FieldNaming::keys);
}

/// A record by its field names: the model form of logs and the inspector.
template <Record T>
JSON describe(const T& record) {
  return toJSONObject(record, FieldNaming::names);
}

template <class V>
JSON toJSONValue(const V& v, FieldNaming naming) {
  if constexpr (Record<V>) {
    return toJSONObject(v, naming);
  } else if constexpr (requires { v.describe(); }) {
    return v.describe();
  } else if constexpr (RawEnum<V>) {
    return JSON(rawValue(v));
  } else if constexpr (std::is_same_v<V, bool>) {
    return JSON(v);
  } else if constexpr (std::is_integral_v<V>) {
    return JSON(static_cast<std::int64_t>(v));
  } else if constexpr (std::is_floating_point_v<V>) {
    return JSON(static_cast<double>(v));
  } else if constexpr (std::is_convertible_v<const V&, std::string_view>) {
    return JSON(std::string_view(v));
  } else if constexpr (std::is_same_v<V, JSON> || std::is_same_v<V, JSONObject> || std::is_same_v<V, JSONArray>) {
    return JSON(v);
  } else if constexpr (detail::IsOptional<V>::value) {
    return v ? toJSONValue(*v, naming) : JSON(nullptr);
  } else if constexpr (requires {
                         typename V::element_type;
                         v.get();
                       }) {
    return v ? toJSONValue(*v, naming) : JSON(nullptr);
  } else if constexpr (requires { typename V::mapped_type; }) {
    JSONObject o;
    for (const auto& [k, x] : v) o.emplace(k, toJSONValue(x, naming));
    return o;
  } else {
    JSONArray a;
    for (const auto& x : v) a.push_back(toJSONValue(x, naming));
    return a;
  }
}

/// Lets GoogleTest and logs print any record readably.
template <Record T>
void PrintTo(const T& record, std::ostream* os) {
  *os << serialize(describe(record));
}

}  // namespace websdk

#define WEBSDK_PP_IDENTITY(...) __VA_ARGS__
#define WEBSDK_DETAIL_FIELD(T, m) , ::websdk::field(#m, &T::m)
#define WEBSDK_DETAIL_KEYED_FIELD(T, pair) , WEBSDK_DETAIL_KEYED_FIELD_I(T, WEBSDK_PP_IDENTITY pair)
#define WEBSDK_DETAIL_KEYED_FIELD_I(T, ...) WEBSDK_DETAIL_KEYED_FIELD_II(T, __VA_ARGS__)
#define WEBSDK_DETAIL_KEYED_FIELD_II(T, m, key) ::websdk::field(#m, &T::m, key)

/// Declares a record's fields (by name) and its memberwise equality.
#define WEBSDK_RECORD(T, ...)                                                                                 \
  template <class WebSDKSelf = T>                                                                             \
  static constexpr auto fields() {                                                                            \
    return ::websdk::detail::fieldTuple(0 WEBSDK_FOR_EACH_ARG(WEBSDK_DETAIL_FIELD, WebSDKSelf, __VA_ARGS__)); \
  }                                                                                                           \
  friend bool operator==(const T&, const T&) = default;

/// Declares a record's fields as (field, "key") pairs and its equality.
#define WEBSDK_KEYED_RECORD(T, ...)                                                                                 \
  template <class WebSDKSelf = T>                                                                                   \
  static constexpr auto fields() {                                                                                  \
    return ::websdk::detail::fieldTuple(0 WEBSDK_FOR_EACH_ARG(WEBSDK_DETAIL_KEYED_FIELD, WebSDKSelf, __VA_ARGS__)); \
  }                                                                                                                 \
  friend bool operator==(const T&, const T&) = default;

namespace websdk::detail {
template <class... F>
constexpr std::tuple<F...> fieldTuple(int, F... f) {
  return {f...};
}
}  // namespace websdk::detail
