#pragma once
/// @file
/// A family's actions, written once as a table: each row is the action's case,
/// the string pages send, the typed payload's case and the model it carries
/// (none for an action that carries nothing, `Refused` for one that is never
/// decoded).
///
/// ~~~{.cpp}
///   WEBSDK_ACTIONS(WebSDKCartAction, WebSDKCartRequestPayload,
///                  (getCart, "GET_LOCAL_CART", getCart, WebSDKGetCartRequestModel),
///                  (clearCart, "CLEAR_LOCAL_CART", clearCart))
/// ~~~
///
/// declares the action enumeration with its raw values, the payload's case
/// enumeration (named by the cases: WebSDKCartRequestPayloadCase) and the typed
/// payload, whose validateRequest decodes a request's payload into the row's
/// model by the model's reader.

#include "websdk/Export.hpp"
#include "websdk/json/Enum.hpp"
#include "websdk/json/Payload.hpp"

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <tuple>
#include <type_traits>

namespace websdk {

/// A row's model for an action that is known but never decoded: the request
/// is always declined, whatever it carries.
struct Refused {};

/// One row of a family's table: action A decodes to case C carrying Model
/// (void: carries nothing; Refused: never decodes).
template <auto A, auto C, class Model>
struct ActionRow {
  static constexpr auto action = A;                                ///< The action.
  static constexpr auto tag = C;                                   ///< Its payload's case.
  static constexpr bool refused = std::is_same_v<Model, Refused>;  ///< Whether it never decodes.
  using Type = std::conditional_t<refused, void, Model>;           ///< What its case carries.
};

namespace detail {
/// A row's model read from a payload by the model's own reader.
template <class Model>
std::optional<Model> readCarried(const std::optional<JSONObject>& payload) {
  if constexpr (IsOptional<Model>::value) {
    // A case that carries its model when it decodes, and is there without it.
    return Model(Model::value_type::from(payload));
  } else if constexpr (requires { typename Model::element_type; }) {
    auto model = Model::element_type::from(payload);
    if (!model) return std::nullopt;
    return std::make_shared<typename Model::element_type>(std::move(*model));
  } else {
    return Model::from(payload);
  }
}
}  // namespace detail

/// A family's typed payload `Self`, decoded from a request by its action's
/// row of the table `Rows`.
template <class Self, class ActionT, class CaseT, class... Rows>
class ActionPayload : public TaggedPayload<Self, CaseT, Rows...> {
  using Base = TaggedPayload<Self, CaseT, Rows...>;

 public:
  using Action = ActionT;             ///< The family's action enumeration.
  using Table = std::tuple<Rows...>;  ///< The family's action table, one ActionRow per action.

  /// The typed payload of `request` (an action of this family with its
  /// payload dictionary), or nothing when the row's model does not decode.
  template <class Request>
  static std::optional<Self> validateRequest(const Request& request) {
    return Self::decodeAction(request.type, request.payload);
  }

 protected:
  /// The table's decoding, which a family's own decodeAction compiles once
  /// (WEBSDK_ACTIONS_COMPILED) so that no other file instantiates its models.
  static std::optional<Self> decodeByTable(ActionT action, const std::optional<JSONObject>& payload) {
    const auto i = static_cast<std::size_t>(action);
    if (i >= sizeof...(Rows)) return std::nullopt;
    // Here, not a member: a member table would instantiate every row's
    // decoding in each file that names the family.
    static constexpr std::array<Decoder, sizeof...(Rows)> decoders{&decodeRow<Rows>...};
    return decoders[i](payload);
  }

 private:
  using Decoder = std::optional<Self> (*)(const std::optional<JSONObject>&);

  template <class Row>
  static std::optional<Self> decodeRow(const std::optional<JSONObject>& payload) {
    if constexpr (Row::refused)
      return std::nullopt;
    else if constexpr (std::is_void_v<typename Row::Type>)
      return Base::template make<Row::tag>();
    else
      return Base::template whenDecoded<Row::tag>(detail::readCarried<typename Row::Type>(payload));
  }

  static constexpr bool inActionOrder() {
    std::size_t i = 0;
    return ((static_cast<std::size_t>(Rows::action) == i++) && ...);
  }
  static_assert(inActionOrder(), "one row per action, in the action enumeration's order");
};

}  // namespace websdk

#define WEBSDK_DETAIL_ROW_ACTION(_, row) WEBSDK_DETAIL_ROW_ACTION_I(WEBSDK_PP_IDENTITY row)
#define WEBSDK_DETAIL_ROW_ACTION_I(...) WEBSDK_DETAIL_ROW_ACTION_II(__VA_ARGS__)
#define WEBSDK_DETAIL_ROW_ACTION_II(a, raw, c, ...) a,

#define WEBSDK_DETAIL_ROW_RAW(A, row) WEBSDK_DETAIL_ROW_RAW_I(A, WEBSDK_PP_IDENTITY row)
#define WEBSDK_DETAIL_ROW_RAW_I(A, ...) WEBSDK_DETAIL_ROW_RAW_II(A, __VA_ARGS__)
#define WEBSDK_DETAIL_ROW_RAW_II(A, a, raw, c, ...) ::websdk::RawValue<A>{A::a, raw},

#define WEBSDK_DETAIL_ROW_CASE(_, row) WEBSDK_DETAIL_ROW_CASE_I(WEBSDK_PP_IDENTITY row)
#define WEBSDK_DETAIL_ROW_CASE_I(...) WEBSDK_DETAIL_ROW_CASE_II(__VA_ARGS__)
#define WEBSDK_DETAIL_ROW_CASE_II(a, raw, c, ...) c,

#define WEBSDK_DETAIL_ROW_CASE_NAME(C, row) WEBSDK_DETAIL_ROW_CASE_NAME_I(C, WEBSDK_PP_IDENTITY row)
#define WEBSDK_DETAIL_ROW_CASE_NAME_I(C, ...) WEBSDK_DETAIL_ROW_CASE_NAME_II(C, __VA_ARGS__)
#define WEBSDK_DETAIL_ROW_CASE_NAME_II(C, a, raw, c, ...) ::websdk::RawValue<C>{C::c, #c},

#define WEBSDK_DETAIL_ROW_TYPE(AC, row) WEBSDK_DETAIL_ROW_TYPE_I(AC, WEBSDK_PP_IDENTITY row)
#define WEBSDK_DETAIL_ROW_TYPE_I(AC, ...) WEBSDK_DETAIL_ROW_TYPE_II(AC, __VA_ARGS__)
#define WEBSDK_DETAIL_ROW_TYPE_II(AC, a, raw, c, ...) \
  , ::websdk::ActionRow<WEBSDK_DETAIL_FIRST AC::a, WEBSDK_DETAIL_SECOND AC::c, WEBSDK_DETAIL_MODEL_OR_VOID(__VA_ARGS__)>
#define WEBSDK_DETAIL_FIRST(a, b) a
#define WEBSDK_DETAIL_SECOND(a, b) b
#define WEBSDK_DETAIL_MODEL_OR_VOID(...) __VA_OPT__(__VA_ARGS__) WEBSDK_DETAIL_VOID_UNLESS(__VA_ARGS__)
#define WEBSDK_DETAIL_VOID_UNLESS(...) WEBSDK_DETAIL_VOID_UNLESS_I(__VA_OPT__(, ) void)
#define WEBSDK_DETAIL_VOID_UNLESS_I(...) WEBSDK_DETAIL_VOID_UNLESS_II(__VA_ARGS__, )
#define WEBSDK_DETAIL_VOID_UNLESS_II(x, ...) x

/// Declares a family's action enumeration, its typed payload and the payload's
/// case enumeration from one table of (action, "RAW", case[, Model]) rows.
/// The payload's decoding and description are declared here and compiled in
/// one source file, which says WEBSDK_ACTIONS_COMPILED(Payload): decoding
/// instantiates every model of the family, which no other file should pay for.
#define WEBSDK_ACTIONS(Action, Payload, ...)                                                                       \
  enum class Action { WEBSDK_FOR_EACH_ARG(WEBSDK_DETAIL_ROW_ACTION, _, __VA_ARGS__) };                             \
  constexpr auto rawValues(Action) {                                                                               \
    return std::to_array<::websdk::RawValue<Action>>(                                                              \
        {WEBSDK_FOR_EACH_ARG(WEBSDK_DETAIL_ROW_RAW, Action, __VA_ARGS__)});                                        \
  }                                                                                                                \
  enum class Payload##Case{WEBSDK_FOR_EACH_ARG(WEBSDK_DETAIL_ROW_CASE, _, __VA_ARGS__)};                           \
  constexpr auto rawValues(Payload##Case) {                                                                        \
    return std::to_array<::websdk::RawValue<Payload##Case>>(                                                       \
        {WEBSDK_FOR_EACH_ARG(WEBSDK_DETAIL_ROW_CASE_NAME, Payload##Case, __VA_ARGS__)});                           \
  }                                                                                                                \
  class WEBSDK_EXPORT Payload                                                                                      \
      : public ::websdk::ActionPayload<Payload, Action,                                                            \
                                       Payload##Case WEBSDK_FOR_EACH_ARG(WEBSDK_DETAIL_ROW_TYPE,                   \
                                                                         (Action, Payload##Case), __VA_ARGS__)> {  \
   public:                                                                                                         \
    /** The typed payload of `action` read from `payload`, or nothing when its row refuses. */                     \
    static std::optional<Payload> decodeAction(Action action, const std::optional<::websdk::JSONObject>& payload); \
    /** {"case": name, "model": {...}}; the model is left out when there is none. */                               \
    ::websdk::JSON describe() const;                                                                               \
  };

/// Compiles the decoding and description of a family's typed payload
/// declared by WEBSDK_ACTIONS: in one source file, at namespace scope.
#define WEBSDK_ACTIONS_COMPILED(Payload)                                                                            \
  std::optional<Payload> Payload::decodeAction(Action action, const std::optional<::websdk::JSONObject>& payload) { \
    return decodeByTable(action, payload);                                                                          \
  }                                                                                                                 \
  ::websdk::JSON Payload::describe() const { return TaggedPayload::describe(); }
