#pragma once
/// @file
/// What a model reads, as data: the keys its declaration names, with their
/// readings, the values an enumeration accepts, what nested objects and array
/// elements hold, and whether the model fails without the key. The contract
/// tools (websdk-inspect --catalogue, the page's typings) print it.
///
/// Keys come in the order a reader meets them: the ones the model cannot do
/// without first, then the others in declaration order.

#include "websdk/json/Model.hpp"

#include <string>
#include <string_view>
#include <type_traits>

namespace websdk {

template <Declared T>
JSONArray modelSchema(bool reached = true);

namespace detail {

template <class T>
struct IsVector : std::false_type {};
template <class T>
struct IsVector<std::vector<T>> : std::true_type {};

/// {"readings", "values", "fields", "elements"} of one field.
template <class Member, class R>
JSONObject readingSchema(bool reached) {
  using V = UnwrappedT<Member>;
  JSONObject out;
  JSONArray readings;
  if constexpr (requires { R::kind; }) readings.push_back(JSON(rawValue(R::kind)));
  if constexpr (std::is_same_v<R, reading::ModelReading>) readings.push_back(JSON(rawValue(ReadingKind::object)));
  out.emplace("readings", std::move(readings));
  if constexpr (std::is_same_v<R, reading::EnumerationReading>) {
    JSONArray values;
    for (auto c : allCases<V>()) values.push_back(JSON(rawValue(c)));
    out.emplace("values", std::move(values));
  }
  if constexpr (std::is_same_v<R, reading::ModelReading>) {
    JSONArray fields = modelSchema<V>(reached);
    if (!fields.empty()) out.emplace("fields", std::move(fields));
  }
  if constexpr (requires { typename R::ElementReading; }) {
    using Element = typename V::value_type;
    out.emplace("elements", readingSchema<Element, typename R::ElementReading>(reached));
  }
  return out;
}

inline JSONObject* findKey(JSONArray& fields, std::string_view key) {
  for (auto& f : fields)
    if (auto* o = f.if_object(); o && o->at("key").get_string() == key) return o;
  return nullptr;
}

/// The entry for `key` in `fields`, added (as an object reading) when missing.
inline JSONObject& entryFor(JSONArray& fields, std::string_view key, bool required) {
  if (JSONObject* found = findKey(fields, key)) return *found;
  JSONObject entry;
  entry.emplace("key", key);
  entry.emplace("readings", JSONArray{JSON(rawValue(ReadingKind::object))});
  entry.emplace("fields", JSONArray{});
  entry.emplace("required", required);
  fields.push_back(std::move(entry));
  return fields.back().get_object();
}

/// Adds field `f` to `fields`, inside the entries its dotted path names.
template <class T, class M, class R>
void addField(JSONArray& fields, const ModelField<T, M, R>& f, bool reached, const ModelRule& rule) {
  if constexpr (std::is_same_v<R, reading::WholePayloadReading> || std::is_same_v<R, reading::UnreadReading>)
    return;  // reads no key
  const std::string_view within = rule.within;
  JSONArray* into = rule.inside ? &entryFor(fields, within, reached)["fields"].get_array() : &fields;
  std::string_view path = f.path;
  for (auto dot = path.find('.'); dot != std::string_view::npos; dot = path.find('.')) {
    const std::string_view parent = path.substr(0, dot);
    JSONObject& entry = entryFor(*into, parent, reached && parent == within);
    into = &entry["fields"].get_array();
    path.remove_prefix(dot + 1);
  }
  // A key the model's rule already needs as an object (`within`) keeps its
  // place and its requirement.
  JSONObject* existing = findKey(*into, path);
  JSONObject entry;
  entry.emplace("key", path);
  for (auto& m : readingSchema<M, R>(reached && f.required)) entry.emplace(m.key(), std::move(m.value()));
  entry.emplace("required", (reached && f.required) || (existing != nullptr && existing->at("required").as_bool()));
  if (f.sensitive) entry.emplace("sensitive", true);
  if (existing != nullptr)
    *existing = std::move(entry);
  else
    into->push_back(std::move(entry));
}

}  // namespace detail

/// The keys model T reads. `reached`: whether T's failing fails the whole
/// payload, so that its required keys are required of the page.
template <Declared T>
JSONArray modelSchema(bool reached) {
  constexpr ModelRule rule = T::modelRule();
  JSONArray fields;
  if (!rule.within.empty()) detail::entryFor(fields, rule.within, reached);
  for (bool requiredPass : {true, false})
    std::apply(
        [&](const auto&... f) {
          ((f.required == requiredPass ? detail::addField(fields, f, reached, rule) : void()), ...);
        },
        T::fields());
  // A nested object with nothing declared in it is only an object reading.
  for (auto& f : fields)
    if (auto& o = f.get_object(); o.contains("fields") && o.at("fields").get_array().empty()) o.erase("fields");
  return fields;
}

/// Whether model T decodes from no payload at all.
template <Declared T>
constexpr bool acceptsNoPayload() {
  constexpr ModelRule rule = T::modelRule();
  if (rule.needsPayload || rule.needsEntries || !rule.within.empty()) return false;
  return std::apply([](const auto&... f) { return (!f.required && ...); }, T::fields());
}

}  // namespace websdk
