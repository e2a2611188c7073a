#pragma once
/// @file
/// Models: records whose fields are declared once with the JSON key each one is
/// read from and the reading that takes it. Decoding, equality, encoding, the
/// description and the contract tools print all come from that one list.
///
/// ~~~{.cpp}
///   struct WebSDKApplyCouponRequestModel {
///     std::optional<JSONObject> tenant;
///     double cartValue = 0;
///     std::string restaurantId;
///     std::optional<std::string> couponListingVersion;
///
///     WEBSDK_MODEL(WebSDKApplyCouponRequestModel, needsEntries,
///                  (tenant, object),
///                  (cartValue, number, "cart_total_shown_to_coupon"),
///                  (restaurantId, strictString, required),
///                  (couponListingVersion, strictString))
///   };
/// ~~~
///
/// Each field is (member, reading, options...). Options: a string gives the key
/// when it is not the member's name ("a.b" reads b inside the object under a);
/// `required` makes the model fail when the reading gives nothing (for a lenient
/// reading, which always gives something: when the key is absent); `orEmpty`
/// gives an optional member its type's empty value instead of nothing;
/// `ifObject` / `ifGiven` read the field only when its key holds an object / is
/// present and not null; `sensitive` marks the user's own data, which traffic
/// recordings mask. A field that is not required and reads nothing keeps
/// its default. A lenient reading into an optional member is taken only when
/// the key is present. A string reading into an enumeration member takes the
/// case whose raw value it is. A rule across fields is the model's own
/// `bool isValid() const`.
///
/// The second argument is the model's own rule: `anyPayload` (never fails for
/// the payload as a whole), `needsPayload` (fails without a payload object),
/// `needsEntries` (fails without one or with an empty one), `within("tenant")`
/// (fails unless "tenant" holds an object), `inside("juspayParams")` (the same,
/// and every field's key is read inside that object), `strict` (a present, non-null value
/// that its reading refuses fails the model: for records hosts decode from
/// their own stored JSON).

#include "websdk/json/Readings.hpp"
#include "websdk/json/Record.hpp"

#include <memory>
#include <optional>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

namespace websdk {

/// What makes a whole model fail, before its fields are read.
struct ModelRule {
  bool needsPayload = false;  ///< Fails without a payload object.
  bool needsEntries = false;  ///< Fails without a payload object or with an empty one.
  bool strict = false;        ///< A present, non-null value its reading refuses fails the model.
  std::string_view within;    ///< A key that must hold an object.
  bool inside = false;        ///< The fields' keys are read inside the object under `within`.

  /// Both rules at once.
  constexpr ModelRule operator|(ModelRule o) const {
    return {needsPayload || o.needsPayload, needsEntries || o.needsEntries, strict || o.strict,
            within.empty() ? o.within : within, within.empty() ? o.inside : inside};
  }
  /// The object the fields' keys are read in: "" for the payload itself.
  constexpr std::string_view fieldsIn() const { return inside ? within : std::string_view{}; }
};

/// The rules a model declares with (WEBSDK_MODEL's second argument).
namespace rules {
inline constexpr ModelRule anyPayload{};                          ///< Never fails for the payload as a whole.
inline constexpr ModelRule needsPayload{true, false, false, {}};  ///< Fails without a payload object.
inline constexpr ModelRule needsEntries{false, true, false, {}};  ///< Fails without one or with an empty one.
inline constexpr ModelRule strict{false, false, true, {}};        ///< A value its reading refuses fails the model.
/// Fails unless `key` holds an object.
constexpr ModelRule within(std::string_view key) { return {false, false, false, key}; }
/// Fails unless `key` holds an object, and reads every field's key inside it.
constexpr ModelRule inside(std::string_view key) { return {false, false, false, key, true}; }
}  // namespace rules

/// A field option: the model fails when this field's reading gives nothing.
struct Required {};
inline constexpr Required required{};  ///< The option, as a field list writes it.
/// A field option for an optional member: it holds its type's empty value
/// (not nothing) when the reading gives nothing.
struct OrEmpty {};
inline constexpr OrEmpty orEmpty{};  ///< The option, as a field list writes it.
/// Field options: the field is read only when its key holds an object
/// (`ifObject`), or is present and not null (`ifGiven`); otherwise the member
/// keeps its default.
enum class ReadOnly { always, ifObject, ifGiven };
inline constexpr auto ifObject = ReadOnly::ifObject;  ///< Read only when the key holds an object.
inline constexpr auto ifGiven = ReadOnly::ifGiven;    ///< Read only when the key is present and not null.
/// A field option: the value is the user's own (card data, tokens, phone
/// numbers, addresses). Traffic recordings write it as a fixed mask.
struct Sensitive {};
inline constexpr Sensitive sensitive{};  ///< The option, as a field list writes it.

template <class T>
concept Declared = requires {
  T::modelRule();
};

template <Declared T>
std::optional<T> decodeModel(Fields payload);

namespace detail {
template <class T>
struct Unwrapped {
  using type = T;
};
template <class T>
struct Unwrapped<std::optional<T>> {
  using type = T;
};
template <class T>
struct Unwrapped<std::shared_ptr<T>> {
  using type = T;
};
template <class T>
using UnwrappedT = typename Unwrapped<T>::type;
}  // namespace detail

/// The readings a field can be declared with. Each one knows its name in the
/// contract and reads a possibly absent value into the member's type `V`.
namespace reading {

// A reading by the function of its name, shown in the contract as `kind`.
#define WEBSDK_DETAIL_SCALAR_READING(name, kind_)           \
  struct name##Reading {                                    \
    static constexpr ReadingKind kind = ReadingKind::kind_; \
    template <class V>                                      \
    static auto read(const JSON* v) {                       \
      return ::websdk::name(v);                             \
    }                                                       \
  };                                                        \
  inline constexpr name##Reading name {}

WEBSDK_DETAIL_SCALAR_READING(lenientString, lenientString);
WEBSDK_DETAIL_SCALAR_READING(strictString, strictString);
WEBSDK_DETAIL_SCALAR_READING(lenientBool, lenientBool);
WEBSDK_DETAIL_SCALAR_READING(strictBool, strictBool);
WEBSDK_DETAIL_SCALAR_READING(lenientInt, lenientInt);
WEBSDK_DETAIL_SCALAR_READING(lenientDouble, lenientDouble);
WEBSDK_DETAIL_SCALAR_READING(number, number);
WEBSDK_DETAIL_SCALAR_READING(integer, integer);
WEBSDK_DETAIL_SCALAR_READING(object, object);
WEBSDK_DETAIL_SCALAR_READING(array, array);
WEBSDK_DETAIL_SCALAR_READING(stringMap, stringMap);
WEBSDK_DETAIL_SCALAR_READING(raw, raw);
// Readings of a value's lenient text, which the contract shows as such: a yes,
// or a whole decimal number.
WEBSDK_DETAIL_SCALAR_READING(yesText, lenientString);
WEBSDK_DETAIL_SCALAR_READING(wholeNumberText, lenientString);
#undef WEBSDK_DETAIL_SCALAR_READING

/// Reads no key: the member keeps its default.
struct UnreadReading {};
inline constexpr UnreadReading unread{};  ///< The reading, as a field list names it.

/// One of the member's enumeration's raw values.
struct EnumerationReading {
  static constexpr ReadingKind kind = ReadingKind::enumeration;  ///< Its name in the contract.
  /// The case of `V` whose raw value `v` is, or nothing.
  template <class V>
  static auto read(const JSON* v) {
    return ::websdk::enumeration<V>(v);
  }
};
inline constexpr EnumerationReading enumeration{};  ///< The reading, as a field list names it.

/// The member's own model, read from the object under the key (from an absent
/// dictionary when there is none, so a model that never fails is always there).
struct ModelReading {
  /// The model `V` decoded from `v`, or nothing when it fails.
  template <class V>
  static auto read(const JSON* v) {
    return decodeModel<V>(Fields::of(v));
  }
};
inline constexpr ModelReading model{};  ///< The reading, as a field list names it.

/// An array whose every element the element reading takes; nothing unless the
/// value is an array, and nothing when a reading that can refuse refuses one.
template <class Element, bool dropRefused = false>
struct ListReading {
  static constexpr ReadingKind kind = ReadingKind::array;  ///< Its name in the contract.
  using ElementReading = Element;                          ///< How each element is read.
  /// The list `V` read from `v`, or nothing.
  template <class V>
  static std::optional<V> read(const JSON* v) {
    const auto* list = v != nullptr ? v->if_array() : nullptr;
    if (list == nullptr) return std::nullopt;
    V out;
    out.reserve(list->size());
    for (const auto& e : *list) {
      auto item = Element::template read<typename V::value_type>(&e);
      if constexpr (detail::IsOptional<decltype(item)>::value) {
        if (item)
          out.push_back(std::move(*item));
        else if (!dropRefused)
          return std::nullopt;
      } else {
        out.push_back(std::move(item));
      }
    }
    return out;
  }
};
inline constexpr ListReading<lenientStringReading> stringList{};       ///< Each element as lenient text.
inline constexpr ListReading<strictStringReading> strictStringList{};  ///< Each element a JSON string.
inline constexpr ListReading<lenientIntReading> intList{};             ///< Each element as a lenient integer.
inline constexpr ListReading<ModelReading> modelList{};                ///< Each element the member's element model.
/// The elements the member's element model decodes from; the others dropped.
inline constexpr ListReading<ModelReading, true> modelsThatDecode{};

/// The payload dictionary itself, as received (no key of its own).
struct WholePayloadReading {};
inline constexpr WholePayloadReading wholePayload{};  ///< The reading, as a field list names it.

}  // namespace reading

/// One field of a model's list: member `M` of `T`, read by reading `R` with
/// its options.
template <class T, class M, class R>
struct ModelField {
  std::string_view name;             ///< The member's name: descriptions use it.
  M T::*member;                      ///< The member.
  std::string_view key;              ///< The key encoding writes: the member's name.
  std::string_view path;             ///< The key decoding reads ("a.b": b inside the object under a).
  bool required = false;             ///< The `required` option.
  bool orEmpty = false;              ///< The `orEmpty` option.
  ReadOnly only = ReadOnly::always;  ///< The `ifObject` or `ifGiven` option.
  bool sensitive = false;            ///< The `sensitive` option.
  using Reading = R;                 ///< The reading.
};

namespace detail {

template <class F>
constexpr void applyOption(F& f, std::string_view key) {
  f.path = key;
}
template <class F>
constexpr void applyOption(F& f, Required) {
  f.required = true;
}
template <class F>
constexpr void applyOption(F& f, OrEmpty) {
  f.orEmpty = true;
}
template <class F>
constexpr void applyOption(F& f, ReadOnly only) {
  f.only = only;
}
template <class F>
constexpr void applyOption(F& f, Sensitive) {
  f.sensitive = true;
}

template <class T, class M, class R, class... O>
constexpr ModelField<T, M, R> modelField(std::string_view name, M T::*member, R, O... options) {
  ModelField<T, M, R> f{name, member, name, name, false, false, ReadOnly::always, false};
  (applyOption(f, options), ...);
  return f;
}

/// The value under `path`, stepping into objects at each '.'.
inline const JSON* lookUp(Fields fields, std::string_view path) {
  for (auto dot = path.find('.'); dot != std::string_view::npos; dot = path.find('.')) {
    fields = fields.nested(path.substr(0, dot));
    path.remove_prefix(dot + 1);
  }
  return fields[path];
}

template <class M, class V>
void assign(M& member, V&& value) {
  using E = UnwrappedT<M>;
  if constexpr (std::is_enum_v<E> && std::is_same_v<std::remove_cvref_t<V>, std::string>) {
    // Text into an enumeration: the case of that raw value; other text keeps the default.
    if (auto c = fromRawValue<E>(std::string_view(value))) member = *c;
  } else if constexpr (requires { member = std::forward<V>(value); })
    member = std::forward<V>(value);
  else
    member = static_cast<M>(value);
}

template <class T, class M, class R>
bool readField(Fields fields, const ModelField<T, M, R>& f, T& out, bool strict) {
  M& member = out.*(f.member);
  if constexpr (std::is_same_v<R, reading::WholePayloadReading>) {
    if (fields.dictionary() != nullptr) member = *fields.dictionary();
    return true;
  } else if constexpr (std::is_same_v<R, reading::UnreadReading>) {
    return true;
  } else {
    const JSON* v = lookUp(fields, f.path);
    if (f.only == ReadOnly::ifObject && (v == nullptr || !v->is_object())) return true;
    if (f.only == ReadOnly::ifGiven && (v == nullptr || v->is_null())) return true;
    auto value = R::template read<UnwrappedT<M>>(v);
    if constexpr (IsOptional<decltype(value)>::value) {
      if (value) {
        if constexpr (requires { typename M::element_type; })
          member = std::make_shared<UnwrappedT<M>>(std::move(*value));
        else
          assign(member, std::move(*value));
        return true;
      }
      if (f.required) return false;
      if constexpr (IsOptional<M>::value)
        if (f.orEmpty) member.emplace();
      return !(strict && v != nullptr && !v->is_null());
    } else {
      // A lenient reading always gives a value; an optional member takes it
      // only when the key is there, and a required one needs the key.
      if (f.required && v == nullptr) return false;
      if (!IsOptional<M>::value || v != nullptr) assign(member, std::move(value));
      return true;
    }
  }
}

}  // namespace detail

/// The model `T` read from `payload` by its field list: nothing when its rule,
/// a required field or its own isValid() refuses.
template <Declared T>
std::optional<T> decodeModel(Fields payload) {
  constexpr ModelRule rule = T::modelRule();
  if (rule.needsPayload && payload.absent()) return std::nullopt;
  if (rule.needsEntries && payload.empty()) return std::nullopt;
  if (!rule.within.empty() && payload.nested(rule.within).absent()) return std::nullopt;
  T out{};
  const Fields read = rule.inside ? payload.nested(rule.within) : payload;
  const bool ok =
      std::apply([&](const auto&... f) { return (detail::readField(read, f, out, rule.strict) && ...); }, T::fields());
  if (!ok) return std::nullopt;
  // A rule across fields, which no single reading can say.
  if constexpr (requires { out.isValid(); })
    if (!out.isValid()) return std::nullopt;
  return out;
}

}  // namespace websdk

#define WEBSDK_DETAIL_MODEL_FIELD(T, spec) , WEBSDK_DETAIL_MODEL_FIELD_I(T, WEBSDK_PP_IDENTITY spec)
#define WEBSDK_DETAIL_MODEL_FIELD_I(T, ...) WEBSDK_DETAIL_MODEL_FIELD_II(T, __VA_ARGS__)
#define WEBSDK_DETAIL_MODEL_FIELD_II(T, m, r, ...) \
  ::websdk::detail::modelField(#m, &T::m, ::websdk::reading::r __VA_OPT__(, ) __VA_ARGS__)

/// Declares a model: its rule, its fields with their readings, its readers
/// `from` (a payload) and `decode` (one JSON value) and its memberwise equality.
#define WEBSDK_MODEL(T, rule, ...)                                                                                  \
  static constexpr ::websdk::ModelRule modelRule() {                                                                \
    using namespace ::websdk::rules;                                                                                \
    return rule;                                                                                                    \
  }                                                                                                                 \
  /* Templates, so that only a file that reads or writes the model instantiates its field list. */                  \
  template <class WebSDKSelf = T>                                                                                   \
  static constexpr auto fields() {                                                                                  \
    using namespace ::websdk;                                                                                       \
    return ::websdk::detail::fieldTuple(0 WEBSDK_FOR_EACH_ARG(WEBSDK_DETAIL_MODEL_FIELD, WebSDKSelf, __VA_ARGS__)); \
  }                                                                                                                 \
  template <class WebSDKSelf = T>                                                                                   \
  static std::optional<WebSDKSelf> from(const std::optional<::websdk::JSONObject>& payload) {                       \
    return ::websdk::decodeModel<WebSDKSelf>(payload);                                                              \
  }                                                                                                                 \
  /** The model from one JSON value (nothing unless the rule accepts it). */                                        \
  template <class WebSDKSelf = T>                                                                                   \
  static std::optional<WebSDKSelf> decode(const ::websdk::JSON& value) {                                            \
    return ::websdk::decodeModel<WebSDKSelf>(::websdk::Fields::of(&value));                                         \
  }                                                                                                                 \
  friend bool operator==(const T&, const T&) = default;
