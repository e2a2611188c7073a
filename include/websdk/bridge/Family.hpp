#pragma once
/// @file
/// What a plugin family is, once for the twelve the library ships and for any
/// a host declares: its row (name, failure message, place in the trial), its
/// action enumeration and typed payload, and its protocol, the one operation
/// through which the bridge hands it an accepted request. A family's header
/// (websdk/bridge/families/) is one WEBSDK_FAMILY row; a host declares its own
/// with WEBSDK_HOST_FAMILY over a WEBSDK_ACTIONS table, and registers it on
/// the view like any other (WebSDKWebView::setPlugin).
///
/// At run time every family is a FamilyType: its action strings, the keys its
/// models mark sensitive, its catalogue entry and the one step that decodes a
/// request and calls the plugin. The bridge routes, decodes, answers, records
/// and counts through it, the library's families and a host's alike.

#include "websdk/Export.hpp"
#include "websdk/bridge/ReceivedPayload.hpp"
#include "websdk/bridge/RequestModel.hpp"
#include "websdk/json/Schema.hpp"

#include <cstddef>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace websdk {

/// How many families the library ships; each of their slots is below this,
/// and a host's families come after them.
inline constexpr std::size_t kFamilyCount = 12;

/// What every family's row has: its slot, its action enumeration, its request,
/// its typed payload and its plugin protocol.
template <std::size_t SlotN, class ActionT, class PayloadT, class PluginT>
struct BridgeFamily {
  static_assert(SlotN <= kFamilyCount, "a family's slot is its place in the trial order, below kFamilyCount");
  /// Where the family's plugin is held and its place in the trial order;
  /// kFamilyCount for a host's family, which comes after the library's.
  static constexpr std::size_t slot = SlotN;
  using Action = ActionT;                        ///< The family's action enumeration.
  using Request = WebSDKBridgeRequest<ActionT>;  ///< A request of the family.
  using Payload = PayloadT;                      ///< The family's typed payload.
  using Plugin = PluginT;                        ///< The family's plugin protocol.
};

/// A host's family: a row like the library's, placed after them.
template <class ActionT, class PayloadT, class PluginT>
using HostFamily = BridgeFamily<kFamilyCount, ActionT, PayloadT, PluginT>;

/// What became of a request once its family was found.
enum class FamilyTrial {
  declined,       ///< Its payload does not decode: the page gets 1004, "not a valid request".
  delivered,      ///< Handed to the plugin.
  dropped,        ///< The plugin was released as the request came: nobody answers.
  notSubscribed,  ///< No plugin: the page gets 1004 and the family's failure message.
};

namespace detail {
/// A callable borrowed for the length of one call: no allocation, no copy.
template <class Signature>
class FunctionRef;
template <class R, class... Args>
class FunctionRef<R(Args...)> {
 public:
  template <class F>
  requires(!std::is_same_v<std::remove_cvref_t<F>, FunctionRef>) FunctionRef(F&& f)
  noexcept  // NOLINT: implicit
      : object_(const_cast<void*>(static_cast<const void*>(&f))), call_([](void* o, Args... args) -> R {
          return (*static_cast<std::remove_reference_t<F>*>(o))(std::forward<Args>(args)...);
        }) {}
  R operator()(Args... args) const { return call_(object_, std::forward<Args>(args)...); }

 private:
  void* object_;
  R (*call_)(void*, Args...);
};
}  // namespace detail

/// The bridge's side of one request whose family is known: what the family's
/// own step (decoding into its typed payload, calling its protocol) needs of
/// it. Made by the bridge for the length of the step.
class WEBSDK_EXPORT FamilyIntake {
 public:
  /// The page's id for the request.
  virtual std::string_view requestId() const = 0;
  /// Whether the view records its traffic: the recording then takes the
  /// request's payload back once the step is done with it, and what the
  /// plugin received.
  virtual bool records() const = 0;
  /// Hands a request that decoded as `action` on: the family's plugin is
  /// looked up (no plugin: notSubscribed; released: dropped), its answer is
  /// expected, its reply is on offer while `call` gets the plugin (the
  /// family's protocol), and the recording then takes what `received` gives.
  virtual FamilyTrial hand(std::string_view action, detail::FunctionRef<void(void* plugin)> call,
                           detail::FunctionRef<std::shared_ptr<const WebSDKReceivedPayload>()> received) = 0;

 protected:
  ~FamilyIntake() = default;
};

/// A family as the bridge holds it at run time: the library's and a host's alike.
struct WEBSDK_EXPORT FamilyType {
  std::string_view name;                  ///< The name tools and logs use ("cart").
  std::string_view failureMessage;        ///< What the page is told when no plugin is set.
  std::size_t slot;                       ///< Its place among the library's families; kFamilyCount for a host's.
  std::vector<std::string_view> actions;  ///< Its action strings, by action.
  std::set<std::string, std::less<>> sensitiveKeys;  ///< Keys and member names its models mark sensitive.
  /// Decodes the request of `action` (its payload, which it may move from)
  /// and hands it on through `intake`.
  FamilyTrial (*trial)(FamilyIntake& intake, std::size_t action, JSON* payload);
  /// {"name", "actions": [{"action", "case", "payload", "fields"}]}: what
  /// each action's model reads, as the catalogue prints it.
  JSON (*describe)();
  /// A plugin of the family that takes every request and answers none (as
  /// a replay's are), held as the bridge holds plugins.
  std::shared_ptr<void> (*silentPlugin)();
};

namespace detail {

template <Declared T>
void collectSensitive(std::set<std::string, std::less<>>& keys);

// A field marked sensitive is masked under its JSON key (what pages send) and
// its member's name (what descriptions of typed payloads use); models nested
// in it, or listed in it, are searched too.
template <class T, class M, class R>
void collectSensitiveField(const ModelField<T, M, R>& f, std::set<std::string, std::less<>>& keys) {
  if (f.sensitive) {
    keys.emplace(f.name);
    const auto dot = f.path.rfind('.');
    keys.emplace(dot == std::string_view::npos ? f.path : f.path.substr(dot + 1));
  }
  using V = UnwrappedT<M>;
  if constexpr (std::is_same_v<R, reading::ModelReading>) {
    collectSensitive<V>(keys);
  } else if constexpr (requires { typename R::ElementReading; }) {
    using Element = UnwrappedT<typename V::value_type>;
    if constexpr (Declared<Element>) collectSensitive<Element>(keys);
  }
}

template <Declared T>
void collectSensitive(std::set<std::string, std::less<>>& keys) {
  std::apply([&](const auto&... f) { (collectSensitiveField(f, keys), ...); }, T::fields());
}

template <class Row>
void collectRowSensitive(std::set<std::string, std::less<>>& keys) {
  if constexpr (!Row::refused && !std::is_void_v<typename Row::Type>)
    collectSensitive<UnwrappedT<typename Row::Type>>(keys);
}
/// The sensitive keys of every model of a family's action table.
template <class... Rows>
void collectTableSensitive(std::tuple<Rows...>*, std::set<std::string, std::less<>>& keys) {
  (collectRowSensitive<Rows>(keys), ...);
}

/// One row of a family's action table: its case and what its model reads.
template <class Row>
JSONObject actionSchema() {
  using Model = typename Row::Type;
  JSONObject out;
  out.emplace("action", rawValue(Row::action));
  if constexpr (Row::refused) {
    out.emplace("case", nullptr);  // no payload ever reaches it
    out.emplace("payload", "never");
    out.emplace("fields", JSONArray{});
  } else if constexpr (std::is_void_v<Model>) {
    out.emplace("case", rawValue(Row::tag));
    out.emplace("payload", "optional");
    out.emplace("fields", JSONArray{});
  } else {
    using M = UnwrappedT<Model>;
    // A carried optional model: the case decodes with or without it.
    constexpr bool alwaysDecodes = IsOptional<Model>::value;
    out.emplace("case", rawValue(Row::tag));
    out.emplace("payload", alwaysDecodes || acceptsNoPayload<M>() ? "optional" : "required");
    out.emplace("fields", modelSchema<M>(!alwaysDecodes));
  }
  return out;
}

template <class F>
JSON describeFamily() {
  JSONArray actions;
  std::apply([&](auto... row) { (actions.push_back(actionSchema<decltype(row)>()), ...); },
             typename F::Payload::Table{});
  JSONObject out;
  out.emplace("name", F::name);
  out.emplace("actions", std::move(actions));
  return out;
}

// What family F's plugin received, kept whole to be described when the
// recording's line is written, off the UI thread.
template <class F>
class ReceivedBy final : public WebSDKReceivedPayload {
 public:
  ReceivedBy(typename F::Action action, typename F::Payload payload) : action_(action), payload_(std::move(payload)) {}
  JSON describe() const override { return payload_.describe(); }
  std::optional<JSON> describeDecoded(const std::optional<JSONObject>& payload) const override {
    const auto decoded = F::Payload::decodeAction(action_, payload);
    if (!decoded) return std::nullopt;
    return decoded->describe();
  }

 private:
  typename F::Action action_;
  typename F::Payload payload_;
};

/// A plugin of family F that takes every request and answers none.
template <class F>
class SilentPlugin final : public F::template Serving<SilentPlugin<F>> {
 public:
  /// Takes the request, and leaves it unanswered.
  template <class G>
  void serve(const typename G::Request&, const typename G::Payload&) {}
};

template <class F>
std::shared_ptr<void> makeSilentPlugin() {
  // Held as the protocol: the bridge casts back to it.
  std::shared_ptr<typename F::Plugin> plugin = std::make_shared<SilentPlugin<F>>();
  return plugin;
}

// Family F's step: its request model (the payload moved out of the parsed
// message, which is used only for its id afterwards, and moved back for a
// recording), its typed payload, and the call of its protocol.
template <class F>
FamilyTrial tryFamily(FamilyIntake& intake, std::size_t action, JSON* payload) {
  typename F::Request request{static_cast<typename F::Action>(action), std::string(intake.requestId()), std::nullopt};
  if (payload != nullptr)
    if (auto* object = payload->if_object()) request.payload.emplace(std::move(*object));
  // A recording writes the payload as the page sent it: it gets it back
  // whichever way the step ends, without a copy.
  struct GiveBack {
    JSON* to;
    std::optional<JSONObject>& from;
    ~GiveBack() {
      if (to != nullptr && from) *to = std::move(*from);
    }
  } giveBack{intake.records() ? payload : nullptr, request.payload};
  auto typed = F::Payload::decodeAction(request.type, request.payload);
  if (!typed) return FamilyTrial::declined;
  return intake.hand(
      rawValue(request.type),
      [&](void* plugin) { F::call(*static_cast<typename F::Plugin*>(plugin), request, *typed); },
      [&]() -> std::shared_ptr<const WebSDKReceivedPayload> {
        // Described by the recorder's writer, from the payload as recorded
        // (masked), which is what a replay gets too.
        return std::make_shared<const ReceivedBy<F>>(request.type, std::move(*typed));
      });
}

}  // namespace detail

/// Family F as the bridge holds it: made once, on first use.
template <class F>
const FamilyType& familyType() {
  static const FamilyType type = [] {
    FamilyType t{F::name,
                 F::failureMessage,
                 F::slot,
                 {},
                 {},
                 &detail::tryFamily<F>,
                 &detail::describeFamily<F>,
                 &detail::makeSilentPlugin<F>};
    for (const auto& entry : enumTable<typename F::Action>) t.actions.push_back(entry.raw);
    detail::collectTableSensitive(static_cast<typename F::Payload::Table*>(nullptr), t.sensitiveKeys);
    return t;
  }();
  return type;
}

/// Whether `name` can name a host's family, action or event: 1 to 128 bytes,
/// a letter first, then letters, digits, underscores, dots, colons and
/// hyphens. Nothing when it can,
/// else why not, in words for the host's log.
WEBSDK_EXPORT std::optional<std::string> invalidName(std::string_view name);

}  // namespace websdk

#define WEBSDK_DETAIL_FAMILY(Family, Row, familyName, message, Protocol, operation, ActionT, PayloadT)          \
  class WEBSDK_EXPORT Protocol {                                                                                \
   public:                                                                                                      \
    virtual ~Protocol() = default;                                                                              \
    virtual void operation(const ::websdk::WebSDKBridgeRequest<ActionT>& request, const PayloadT& payload) = 0; \
  };                                                                                                            \
  struct Family : Row<ActionT, PayloadT, Protocol> {                                                            \
    static constexpr std::string_view name = familyName;                                                        \
    static constexpr std::string_view failureMessage = message;                                                 \
    static void call(Protocol& plugin, const Request& request, const Payload& payload) {                        \
      plugin.operation(request, payload);                                                                       \
    }                                                                                                           \
    template <class Host>                                                                                       \
    class Serving : public Protocol {                                                                           \
     public:                                                                                                    \
      void operation(const Request& request, const Payload& payload) override {                                 \
        static_cast<Host&>(*this).template serve<Family>(request, payload);                                     \
      }                                                                                                         \
    };                                                                                                          \
  };

namespace websdk::detail {
template <std::size_t SlotN>
struct InSlot {
  template <class ActionT, class PayloadT, class PluginT>
  using Row = BridgeFamily<SlotN, ActionT, PayloadT, PluginT>;
};
}  // namespace websdk::detail

/// One of the library's families: its protocol `Protocol`, whose one
/// operation `operation` gets the request and its typed payload, and its row
/// `Family` (slot, the name tools use, the answer the page gets when no
/// plugin is set). The row also carries `Family::call` (the bridge's way in)
/// and `Family::Serving<Host>`, a protocol implementation that hands each
/// request to `host.template serve<Family>(request, payload)`, for objects
/// that serve families generically.
#define WEBSDK_FAMILY(Family, slotN, familyName, message, Protocol, operation, ActionT, PayloadT)            \
  WEBSDK_DETAIL_FAMILY(Family, ::websdk::detail::InSlot<slotN>::template Row, familyName, message, Protocol, \
                       operation, ActionT, PayloadT)

/// A host's own family, declared as the library declares its own: the
/// actions and payload of a WEBSDK_ACTIONS table (whose decoding one of the
/// host's source files compiles with WEBSDK_ACTIONS_COMPILED), its name, the
/// message the page gets when no plugin is registered, and its protocol.
///
/// ~~~{.cpp}
///   WEBSDK_ACTIONS(LoyaltyAction, LoyaltyPayload,
///                  (points, "LOYALTY_POINTS", points),
///                  (redeem, "LOYALTY_REDEEM", redeem, RedeemModel))
///   WEBSDK_HOST_FAMILY(LoyaltyFamily, "loyalty", "Loyalty plugin not subscribed",
///                      LoyaltyPlugin, handleLoyaltyRequest, LoyaltyAction, LoyaltyPayload)
/// ~~~
#define WEBSDK_HOST_FAMILY(Family, familyName, message, Protocol, operation, ActionT, PayloadT) \
  WEBSDK_DETAIL_FAMILY(Family, ::websdk::HostFamily, familyName, message, Protocol, operation, ActionT, PayloadT)
