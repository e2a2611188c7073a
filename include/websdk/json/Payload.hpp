#pragma once
/// @file
/// Typed payloads: a tagged union with one case per action. The case tag, not
/// the type carried, says which case it is, because several cases may carry the
/// same model. A family declares its cases once:
///
/// ~~~{.cpp}
///   WEBSDK_NAMED_CASES(WebSDKCartRequestPayloadCase, getCart, ..., clearCart)
///   class WebSDKCartRequestPayload
///       : public TaggedPayload<WebSDKCartRequestPayload, WebSDKCartRequestPayloadCase,
///                              Carries<WebSDKCartRequestPayloadCase::getCart, WebSDKGetCartRequestModel>, ...> {
///    public:
///     using TaggedPayload::TaggedPayload;
///     static std::optional<WebSDKCartRequestPayload> validateRequest(const WebSDKCartRequestModel&);
///   };
/// ~~~
///
/// Cases not named in a Carries (or carrying void) carry nothing. A family's
/// typed payload is usually declared by its action table (ActionTable.hpp).

#include "websdk/json/Enum.hpp"
#include "websdk/json/JSON.hpp"
#include "websdk/json/Record.hpp"

#include <cstddef>
#include <memory>
#include <optional>
#include <ostream>
#include <type_traits>
#include <variant>

namespace websdk {

/// Case `C` carries a `Model` (a record, an optional record, or a shared
/// reference to one).
template <auto C, class Model>
struct Carries {
  static constexpr auto tag = C;  ///< The case.
  using Type = Model;             ///< What it carries.
};

namespace detail {
// A case that carries nothing (void) holds nothing.
template <class T>
using Stored = std::conditional_t<std::is_void_v<T>, std::monostate, T>;

template <class T>
bool equalCarried(const T& a, const T& b) {
  if constexpr (requires {
                  typename T::element_type;
                  a.get();
                }) {
    return a == b || (a && b && *a == *b);  // shared references compare by value
  } else {
    return a == b;
  }
}
}  // namespace detail

/// A typed payload `Self`: one case of `CaseT`, and what that case carries
/// (the `Carries` rows `Cs`). Made only through its factories.
template <class Self, class CaseT, class... Cs>
class TaggedPayload {
 public:
  using Case = CaseT;  ///< The case enumeration.

 private:
  using Storage = std::variant<std::monostate, detail::Stored<typename Cs::Type>...>;

 public:
  /// Position of case C among the Carries (1-based; 0 = carries nothing).
  // Public because clang checks the access of ModelOf at its use.
  template <Case C>
  static constexpr std::size_t slot() {
    std::size_t i = 0, found = 0;
    ((++i, found = (Cs::tag == C && found == 0 && !std::is_void_v<typename Cs::Type>) ? i : found), ...);
    return found;
  }

  /// The model case C carries.
  template <Case C>
  using ModelOf = std::variant_alternative_t<slot<C>(), Storage>;

  /// The payload of case C, carrying `model`.
  template <Case C>
  requires(slot<C>() != 0) static Self make(ModelOf<C> model) {
    Self s;
    s.case_ = C;
    s.value_.template emplace<slot<C>()>(std::move(model));
    return s;
  }

  /// The payload of case C, which carries nothing.
  template <Case C>
  requires(slot<C>() == 0) static Self make() {
    Self s;
    s.case_ = C;
    return s;
  }

  /// Case C carrying the decoded model, or nothing when decoding failed.
  template <Case C>
  requires(slot<C>() != 0) static std::optional<Self> whenDecoded(std::optional<ModelOf<C>> model) {
    if (!model) return std::nullopt;
    return make<C>(std::move(*model));
  }

  /// Case C carrying its model read from `payload` by the model's own reader,
  /// or nothing when the reader fails.
  template <Case C>
  requires(slot<C>() != 0 && requires(const std::optional<JSONObject>& p) {
    ModelOf<C>::from(p);
  }) static std::optional<Self> decode(const std::optional<JSONObject>& payload) {
    return whenDecoded<C>(ModelOf<C>::from(payload));
  }

  /// Which case this payload is.
  Case kind() const { return case_; }
  /// The case's name, as pages and logs see it ("applyCoupon").
  std::string_view caseName() const { return rawValue(case_); }

  /// What case C carries, or nullptr when this payload is another case.
  template <Case C>
  requires(slot<C>() != 0) const ModelOf<C>* get() const {
    return case_ == C ? std::get_if<slot<C>()>(&value_) : nullptr;
  }

  /// Calls `f` with a pointer to what this payload carries; not at all when
  /// it carries nothing.
  template <class F>
  void visitCarried(F&& f) const {
    std::visit(
        [&](const auto& carried) {
          if constexpr (!std::is_same_v<std::remove_cvref_t<decltype(carried)>, std::monostate>) f(&carried);
        },
        value_);
  }

  /// {"case": name, "model": {...}}; the model is left out when there is none.
  JSON describe() const {
    JSONObject out;
    out.emplace("case", caseName());
    std::visit(
        [&](const auto& carried) {
          using M = std::remove_cvref_t<decltype(carried)>;
          if constexpr (!std::is_same_v<M, std::monostate>) {
            JSON model = toJSONValue(carried, FieldNaming::names);
            if (!model.is_null()) out.emplace("model", std::move(model));
          }
        },
        value_);
    return out;
  }

  /// The same case carrying equal models (shared references compared by value).
  friend bool operator==(const Self& a, const Self& b) {
    return a.case_ == b.case_ && a.value_.index() == b.value_.index() && equalSlots(a.value_, b.value_);
  }
  /// Prints describe()'s text (for GoogleTest and logs).
  friend void PrintTo(const Self& p, std::ostream* os) { *os << serialize(p.describe()); }

 protected:
  TaggedPayload() = default;

 private:
  template <std::size_t I = 0>
  static bool equalSlots(const Storage& a, const Storage& b) {
    if constexpr (I == std::variant_size_v<Storage>) {
      return true;
    } else {
      if (a.index() == I) return detail::equalCarried(*std::get_if<I>(&a), *std::get_if<I>(&b));
      return equalSlots<I + 1>(a, b);
    }
  }

 private:
  Case case_{};
  Storage value_;
};

}  // namespace websdk
