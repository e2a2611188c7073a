#include "Catalogue.hpp"

#include "websdk/bridge/Families.hpp"
#include "websdk/json/Readings.hpp"
#include "websdk/json/Schema.hpp"
#include "websdk/webview/WebSDKJSFunctionType.hpp"

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

namespace websdk::inspect {
namespace {

// Every sample object carries this key, holding the number of the place it
// stands for, so that copies a reader makes are still recognised.
constexpr std::string_view kPlaceKey = "\x01websdk-place";

// Rounds and variants are bounded so that a reader that keeps finding keys
// cannot keep the tool going.
constexpr int kMaxRounds = 32;
constexpr std::size_t kMaxVariants = 64;

/// One place in a payload: a key of an object, or the elements of an array.
struct Place {
  std::vector<std::pair<std::string, std::unique_ptr<Place>>> members;  // in the order first looked up
  std::unique_ptr<Place> element;
  std::vector<ReadingKind> readings;  // in the order first made
  std::vector<std::string> cases;     // the raw values an enumeration reading accepts
  // Nothing read yet: the sample tries an object, then an array, then text,
  // each for one round in which the place was in the sample.
  int guess = 0;
  bool tried = false;

  bool observed() const { return !readings.empty() || !members.empty() || (element && element->observed()); }
  bool has(ReadingKind r) const { return std::find(readings.begin(), readings.end(), r) != readings.end(); }
  Place* find(std::string_view key) const {
    for (const auto& [k, p] : members)
      if (k == key) return p.get();
    return nullptr;
  }
};

enum class Shape { object, array, scalar };

Shape shapeOf(const Place& p) {
  if (!p.members.empty() || p.has(ReadingKind::object) || p.has(ReadingKind::stringMap)) return Shape::object;
  if ((p.element && p.element->observed()) || p.has(ReadingKind::array)) return Shape::array;
  if (p.readings.size() == 1 && p.has(ReadingKind::raw))
    return Shape::object;  // anything goes; an object can be seen into
  if (!p.readings.empty()) return Shape::scalar;
  return p.guess == 0 ? Shape::object : p.guess == 1 ? Shape::array : Shape::scalar;
}

/// Which enumeration case each sample uses (the first unless told), and which
/// place it leaves out.
struct Variant {
  std::map<const Place*, std::size_t> caseOf;
  const Place* omitted = nullptr;
};

/// Runs one action's decoding over samples and learns what it reads.
class Explorer : public ReadingObserver {
 public:
  /// The payload case the action decodes `payload` to, or nothing.
  virtual std::optional<std::string> accept(std::optional<JSONObject> payload) = 0;

  JSONObject describe();

 protected:
  /// Called by accept() with the payload as the readers will see it.
  void watch(const std::optional<JSONObject>& payload) {
    if (!recording_ || !payload) return;
    for (const auto& member : *payload)
      if (member.key() != kPlaceKey)
        if (Place* p = root_.find(member.key())) map(member.value(), *p);
  }

 private:
  void lookedUp(const JSONObject& object, std::string_view key) override {
    Place* p = placeOf(object);
    if (p == nullptr || p->find(key) != nullptr) return;
    p->members.emplace_back(std::string(key), std::make_unique<Place>());
    learned_ = true;
  }

  void read(const JSON& value, ReadingKind reading, std::span<const std::string_view> cases) override {
    Place* p = placeOf(value);
    if (p == nullptr) return;
    if (!p->has(reading)) {
      p->readings.push_back(reading);
      learned_ = true;
    }
    if (reading == ReadingKind::enumeration && p->cases.empty()) p->cases.assign(cases.begin(), cases.end());
  }

  Place* placeOf(const JSONObject& object) const {
    const JSON* number = object.if_contains(kPlaceKey);
    if (number == nullptr || !number->is_int64()) return nullptr;
    const auto i = static_cast<std::size_t>(number->get_int64());
    return i < numbered_.size() ? numbered_[i] : nullptr;
  }
  Place* placeOf(const JSON& value) const {
    if (auto it = mapped_.find(&value); it != mapped_.end()) return it->second;
    if (const auto* object = value.if_object()) return placeOf(*object);
    if (const auto* text = value.if_string(); text && text->starts_with(kPlaceKey)) {
      const auto i = static_cast<std::size_t>(std::stoul(std::string(text->subview(kPlaceKey.size()))));
      return i < numbered_.size() ? numbered_[i] : nullptr;
    }
    return nullptr;
  }

  void map(const JSON& value, Place& p) {
    mapped_[&value] = &p;
    if (const auto* object = value.if_object()) {
      for (const auto& member : *object)
        if (member.key() != kPlaceKey)
          if (Place* m = p.find(member.key())) map(member.value(), *m);
    } else if (const auto* array = value.if_array()) {
      if (p.element)
        for (const auto& element : *array) map(element, *p.element);
    }
  }

  JSON sample(Place& p, const Variant& variant, bool marked);
  JSONObject sampleObject(Place& p, const Variant& variant, bool marked);
  std::optional<std::string> run(const Variant& variant, bool marked);
  void explore();
  std::vector<Variant> variants();
  void guessFurther(Place& p);
  JSONObject describe(const Place& p, const Variant& reference, bool decodes);
  JSONArray describeMembers(const Place& p, const Variant& reference, bool decodes);

  Place root_;
  std::vector<Place*> numbered_;
  std::unordered_map<const JSON*, Place*> mapped_;
  bool recording_ = false;
  bool learned_ = false;
};

JSONObject Explorer::sampleObject(Place& p, const Variant& variant, bool marked) {
  JSONObject out;
  if (marked) {
    out.emplace(kPlaceKey, static_cast<std::int64_t>(numbered_.size()));
    numbered_.push_back(&p);
  }
  for (auto& [key, member] : p.members)
    if (member.get() != variant.omitted) out.emplace(key, sample(*member, variant, marked));
  return out;
}

JSON Explorer::sample(Place& p, const Variant& variant, bool marked) {
  if (marked) p.tried = true;
  switch (shapeOf(p)) {
    case Shape::object: return sampleObject(p, variant, marked);
    case Shape::array: {
      if (!p.element) p.element = std::make_unique<Place>();
      JSONArray out;
      out.push_back(sample(*p.element, variant, marked));
      return out;
    }
    case Shape::scalar: break;
  }
  if (marked && p.readings.empty()) {  // text that still says which place it is
    numbered_.push_back(&p);
    return JSON(std::string(kPlaceKey) + std::to_string(numbered_.size() - 1));
  }
  // A value every reading made of it accepts, as far as one can.
  const ReadingKind first = p.readings.empty() ? ReadingKind::lenientString : p.readings.front();
  switch (first) {
    case ReadingKind::strictBool: return true;
    case ReadingKind::number:
    case ReadingKind::integer: return 1;
    case ReadingKind::enumeration: {
      if (p.cases.empty()) return "";
      const auto it = variant.caseOf.find(&p);
      return JSON(p.cases[it == variant.caseOf.end() ? 0 : it->second]);
    }
    default: return "1";  // the lenient readings take it as text, true and 1
  }
}

std::optional<std::string> Explorer::run(const Variant& variant, bool marked) {
  numbered_.clear();
  mapped_.clear();
  std::optional<JSONObject> payload = sampleObject(root_, variant, marked);
  recording_ = marked;
  ReadingObserver* before = marked ? setReadingObserver(this) : nullptr;
  auto accepted = accept(std::move(payload));
  if (marked) setReadingObserver(before);
  recording_ = false;
  return accepted;
}

// A sample per case of each enumeration read, so that what a reader reads
// only for some cases is seen too.
std::vector<Variant> Explorer::variants() {
  std::vector<Variant> out(1);
  auto visit = [&](auto& self, const Place& p) -> void {
    if (p.has(ReadingKind::enumeration))
      for (std::size_t i = 1; i < p.cases.size() && out.size() < kMaxVariants; ++i) out.push_back({{{&p, i}}, nullptr});
    for (const auto& [key, member] : p.members) self(self, *member);
    if (p.element) self(self, *p.element);
  };
  visit(visit, root_);
  return out;
}

void Explorer::guessFurther(Place& p) {
  for (auto& [key, member] : p.members) {
    if (!member->observed() && member->tried && member->guess < 2) {
      ++member->guess;
      member->tried = false;
      if (member->guess == 2) member->element.reset();
      learned_ = true;
    }
    guessFurther(*member);
  }
  if (p.element) guessFurther(*p.element);
}

void Explorer::explore() {
  for (int round = 0; round < kMaxRounds; ++round) {
    learned_ = false;
    for (const auto& variant : variants()) run(variant, true);
    guessFurther(root_);
    if (!learned_) break;
  }
}

JSONArray Explorer::describeMembers(const Place& p, const Variant& reference, bool decodes) {
  JSONArray fields;
  for (const auto& [key, member] : p.members) {
    JSONObject field;
    field.emplace("key", key);
    JSONObject about = describe(*member, reference, decodes);
    bool required = false;
    if (decodes) {
      Variant without = reference;
      without.omitted = member.get();
      required = !run(without, false);
    }
    for (auto& m : about) field.emplace(m.key(), std::move(m.value()));
    field.emplace("required", required);
    fields.push_back(std::move(field));
  }
  return fields;
}

JSONObject Explorer::describe(const Place& p, const Variant& reference, bool decodes) {
  JSONObject out;
  JSONArray readings;
  for (ReadingKind r : p.readings) readings.push_back(JSON(rawValue(r)));
  out.emplace("readings", std::move(readings));
  if (!p.cases.empty()) {
    JSONArray values;
    for (const auto& c : p.cases) values.push_back(JSON(c));
    out.emplace("values", std::move(values));
  }
  if (!p.members.empty()) out.emplace("fields", describeMembers(p, reference, decodes));
  if (p.element && p.element->observed()) out.emplace("elements", describe(*p.element, reference, decodes));
  return out;
}

JSONObject Explorer::describe() {
  explore();
  std::optional<Variant> reference;
  std::optional<std::string> caseName;
  for (const auto& variant : variants()) {
    if ((caseName = run(variant, false))) {
      reference = variant;
      break;
    }
  }
  const auto withoutPayload = accept(std::nullopt);
  if (!caseName) caseName = withoutPayload;

  JSONObject out;
  out.emplace("case", caseName ? JSON(*caseName) : JSON(nullptr));
  out.emplace("payload", withoutPayload ? "optional" : reference ? "required" : "never");
  out.emplace("fields", describeMembers(root_, reference.value_or(Variant{}), reference.has_value()));
  return out;
}

template <class F>
class FamilyExplorer final : public Explorer {
 public:
  explicit FamilyExplorer(typename F::Action action) : action_(action) {}
  std::optional<std::string> accept(std::optional<JSONObject> payload) override {
    typename F::Request request{action_, "catalogue", std::move(payload)};
    watch(request.payload);
    auto decoded = F::Payload::validateRequest(request);
    if (!decoded) return std::nullopt;
    return std::string(decoded->caseName());
  }

 private:
  typename F::Action action_;
};

// A family declared by its action table: every row says its case and model,
// and each model's declaration says what it reads.
template <class Row>
JSONObject declaredAction() {
  using Model = typename Row::Type;
  JSONObject out;
  out.emplace("action", rawValue(Row::action));
  if constexpr (Row::refused) {
    out.emplace("case", nullptr);  // no payload ever reaches it
    out.emplace("payload", "never");
    out.emplace("fields", JSONArray{});
    return out;
  }
  out.emplace("case", rawValue(Row::tag));
  if constexpr (std::is_void_v<Model>) {
    out.emplace("payload", "optional");
    out.emplace("fields", JSONArray{});
  } else {
    using M = detail::UnwrappedT<Model>;
    out.emplace("payload", acceptsNoPayload<M>() ? "optional" : "required");
    out.emplace("fields", modelSchema<M>());
  }
  return out;
}

template <class F>
JSON family() {
  JSONArray actions;
  if constexpr (requires { typename F::Payload::Table; }) {
    std::apply([&](auto... row) { (actions.push_back(declaredAction<decltype(row)>()), ...); },
               typename F::Payload::Table{});
  } else {
    for (auto action : allCases<typename F::Action>()) {
      FamilyExplorer<F> explorer(action);
      JSONObject entry;
      entry.emplace("action", rawValue(action));
      for (auto& m : explorer.describe()) entry.emplace(m.key(), std::move(m.value()));
      actions.push_back(std::move(entry));
    }
  }
  JSONObject out;
  out.emplace("name", F::name);
  out.emplace("actions", std::move(actions));
  return out;
}

// ---- Page functions ------------------------------------------------------------

// Each argument gets a telling sample (strings their own name, booleans true,
// numbers 1.5), so a reader of the script text can see where each one lands.
template <class Model>
JSONArray fillArguments(Model& model, const PageFunction& function) {
  JSONArray arguments;
  std::size_t i = 0;
  std::apply(
      [&](const auto&... f) {
        auto fill = [&](const auto& field) {
          auto& value = model.*(field.member);
          using V = std::remove_cvref_t<decltype(value)>;
          JSONObject argument;
          argument.emplace("name", field.name);
          if constexpr (std::is_same_v<V, bool>) {
            value = true;
            argument.emplace("type", "bool");
          } else if constexpr (std::is_floating_point_v<V>) {
            value = 1.5;
            argument.emplace("type", "double");
          } else {
            value = std::string(field.name);
            argument.emplace("type", "string");
          }
          argument.emplace("written", rawValue(function.arguments[i++]));
          arguments.push_back(std::move(argument));
        };
        (fill(f), ...);
      },
      Model::fields());
  return arguments;
}

template <WebSDKJSFunctionTypeCase C>
JSON pageFunction() {
  using T = WebSDKJSFunctionType;
  constexpr PageFunction function = T::pageFunction(C);
  JSONObject out;
  out.emplace("case", rawValue(C));
  out.emplace("function", function.name);
  if constexpr (requires { T::template make<C>(); }) {
    out.emplace("script", T::template make<C>().script());
    out.emplace("arguments", JSONArray{});
  } else {
    typename T::template ModelOf<C> model{};
    JSONArray arguments = fillArguments(model, function);
    out.emplace("script", T::template make<C>(model).script());
    out.emplace("arguments", std::move(arguments));
  }
  return out;
}

template <std::size_t... I>
JSONArray pageFunctions(std::index_sequence<I...>) {
  return JSONArray{pageFunction<static_cast<WebSDKJSFunctionTypeCase>(I)>()...};
}

}  // namespace

JSON catalogue() {
  JSONArray families;
  forEachFamily([&]<class F>(F) { families.push_back(family<F>()); });
  JSONObject out;
  out.emplace("families", std::move(families));
  out.emplace("pageFunctions", pageFunctions(std::make_index_sequence<caseCount<WebSDKJSFunctionTypeCase>()>{}));
  return out;
}

}  // namespace websdk::inspect
