#pragma once
/// @file
/// The events native code pushes to the page on its own initiative. Each case
/// is one row of a table: the page function it calls, how the call is guarded,
/// and how each argument is written; the call text and the contract tools'
/// page-function list both come from that row. Text arguments are spliced in
/// verbatim (nothing is escaped), so callers pass text without single quotes,
/// backslashes or line breaks; or they send the escaped form (`escaped()`),
/// which writes each text argument as a JSON string literal.

#include "websdk/Export.hpp"
#include "websdk/json/JSON.hpp"
#include "websdk/json/Payload.hpp"

#include <array>
#include <cstddef>
#include <functional>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

namespace websdk {

/// What each case carries, as the page function receives it.
namespace jsfunction {
/// The keyboard shown or hidden, and its height.
struct WEBSDK_EXPORT KeyboardState {
  /// The fields, written under JSON keys of their names.
  ///@{
  bool visible = false;
  double height = 0;
  ///@}
  WEBSDK_RECORD(KeyboardState, visible, height)
};
/// Whether the page's screen is visible.
struct WEBSDK_EXPORT ScreenVisibility {
  /// Written under the JSON key of its name.
  bool isVisible = false;
  WEBSDK_RECORD(ScreenVisibility, isVisible)
};
/// A deep link for the page to open.
struct WEBSDK_EXPORT Deeplink {
  /// Written under the JSON key of its name.
  std::string url;
  WEBSDK_RECORD(Deeplink, url)
};
/// Whether the user is logged in.
struct WEBSDK_EXPORT UserState {
  /// Written under the JSON key of its name.
  bool loggedin = false;
  WEBSDK_RECORD(UserState, loggedin)
};
/// Text handed to the page function as it is.
struct WEBSDK_EXPORT PayloadData {
  /// Written under the JSON key of its name.
  std::string payloadData;
  WEBSDK_RECORD(PayloadData, payloadData)
};
/// The rest of a search call (see searchQueryInput()).
struct WEBSDK_EXPORT SearchQuery {
  /// Written under the JSON key of its name.
  std::string query;
  WEBSDK_RECORD(SearchQuery, query)
};
/// What the user did in the menu list: played a video, clicked the menu.
struct WEBSDK_EXPORT MenuListInteraction {
  /// The fields, written under JSON keys of their names.
  ///@{
  bool playVideo = false;
  bool menuClick = false;
  ///@}
  WEBSDK_RECORD(MenuListInteraction, playVideo, menuClick)
};
/// A search query and its type.
struct WEBSDK_EXPORT PXSearchAction {
  /// The fields, written under JSON keys of their names.
  ///@{
  std::string query;
  std::string type;
  ///@}
  WEBSDK_RECORD(PXSearchAction, query, type)
};
/// The scratch cards' data, as text.
struct WEBSDK_EXPORT ScratchCardsData {
  /// Written under the JSON key of its name.
  std::string cardData;
  WEBSDK_RECORD(ScratchCardsData, cardData)
};
}  // namespace jsfunction

/// How an argument is written into the call text.
enum class PageArgument {
  text,        // 'value'
  quotedBool,  // 'true' or 'false'
  boolean,     // true or false
  number,      // the shortest decimal text
  tail,        // the rest of the call, closing parenthesis included, as given
};
constexpr auto rawValues(PageArgument) {
  using enum PageArgument;
  return rawValueTable<PageArgument>(
      {{text, "text"}, {quotedBool, "quotedBool"}, {boolean, "boolean"}, {number, "number"}, {tail, "tail"}});
}

/// How the call is made: always, only when the page defines the function
/// (`window.f && window.f()`), or inside `if ('f' in window){ window.f(...); }`.
enum class PageCallGuard { none, whenDefined, whenInWindow };

/// One page function: its name, its guard, what separates its arguments and
/// how each argument of the case's record is written, in the record's order.
struct PageFunction {
  std::string_view name;                      ///< The function's name in the page.
  PageCallGuard guard = PageCallGuard::none;  ///< How the call is guarded.
  std::string_view separator = ",";           ///< What goes between arguments.
  std::array<PageArgument, 2> arguments{};    ///< How each argument is written.
};

namespace detail {
template <class Fields>
struct FieldMembers;
template <class... T, class... M>
struct FieldMembers<std::tuple<Field<T, M>...>> {
  using type = std::tuple<M...>;
};
template <class Record>
struct RecordMembers {
  using type = typename FieldMembers<std::remove_cv_t<decltype(Record::fields())>>::type;
};
template <>
struct RecordMembers<void> {
  using type = std::tuple<>;
};
}  // namespace detail

/// The factory of case C of `Self`: called with the members of the case's
/// `Record` (nothing for void), in the record's order.
template <class Self, auto C, class Record, class Members = typename detail::RecordMembers<Record>::type>
struct PageCallFactory;
/// A case that carries a record.
template <class Self, auto C, class Record, class... M>
struct PageCallFactory<Self, C, Record, std::tuple<M...>> {
  /// The event of case C, carrying these values.
  Self operator()(M... values) const { return Self::template make<C>(Record{std::move(values)...}); }
};
/// A case that carries nothing.
template <class Self, auto C>
struct PageCallFactory<Self, C, void, std::tuple<>> {
  /// The event of case C.
  Self operator()() const { return Self::template make<C>(); }
};

}  // namespace websdk

#define WEBSDK_DETAIL_PF_CASE(_, row) WEBSDK_DETAIL_PF_CASE_I(WEBSDK_PP_IDENTITY row)
#define WEBSDK_DETAIL_PF_CASE_I(...) WEBSDK_DETAIL_PF_CASE_II(__VA_ARGS__)
#define WEBSDK_DETAIL_PF_CASE_II(c, ...) c,

#define WEBSDK_DETAIL_PF_CASE_NAME(C, row) WEBSDK_DETAIL_PF_CASE_NAME_I(C, WEBSDK_PP_IDENTITY row)
#define WEBSDK_DETAIL_PF_CASE_NAME_I(C, ...) WEBSDK_DETAIL_PF_CASE_NAME_II(C, __VA_ARGS__)
#define WEBSDK_DETAIL_PF_CASE_NAME_II(C, c, ...) ::websdk::RawValue<C>{C::c, #c},

// A row is (case, "function", guard) or (case, "function", guard, "separator", Record, writing...).
#define WEBSDK_DETAIL_PF_RECORD(...) \
  __VA_OPT__(WEBSDK_DETAIL_PF_SECOND(__VA_ARGS__, )) WEBSDK_DETAIL_PF_VOID_UNLESS(__VA_ARGS__)
#define WEBSDK_DETAIL_PF_SECOND(a, b, ...) b
#define WEBSDK_DETAIL_PF_VOID_UNLESS(...) WEBSDK_DETAIL_PF_VOID_UNLESS_I(__VA_OPT__(, ) void)
#define WEBSDK_DETAIL_PF_VOID_UNLESS_I(...) WEBSDK_DETAIL_PF_VOID_UNLESS_II(__VA_ARGS__, )
#define WEBSDK_DETAIL_PF_VOID_UNLESS_II(x, ...) x

#define WEBSDK_DETAIL_PF_CARRIES(C, row) WEBSDK_DETAIL_PF_CARRIES_I(C, WEBSDK_PP_IDENTITY row)
#define WEBSDK_DETAIL_PF_CARRIES_I(C, ...) WEBSDK_DETAIL_PF_CARRIES_II(C, __VA_ARGS__)
#define WEBSDK_DETAIL_PF_CARRIES_II(C, c, name, guard, ...) \
  , ::websdk::Carries<C::c, WEBSDK_DETAIL_PF_RECORD(__VA_ARGS__)>

#define WEBSDK_DETAIL_PF_ROW(_, row) WEBSDK_DETAIL_PF_ROW_I(WEBSDK_PP_IDENTITY row)
#define WEBSDK_DETAIL_PF_ROW_I(...) WEBSDK_DETAIL_PF_ROW_II(__VA_ARGS__)
#define WEBSDK_DETAIL_PF_ROW_II(c, name, guard, ...) \
  ::websdk::PageFunction{name, guard __VA_OPT__(, WEBSDK_DETAIL_PF_WRITTEN(__VA_ARGS__))},
#define WEBSDK_DETAIL_PF_WRITTEN(separator, Record, ...) \
  separator, { __VA_ARGS__ }

#define WEBSDK_DETAIL_PF_FACTORY(SC, row) WEBSDK_DETAIL_PF_FACTORY_I(SC, WEBSDK_PP_IDENTITY row)
#define WEBSDK_DETAIL_PF_FACTORY_I(SC, ...) WEBSDK_DETAIL_PF_FACTORY_II(SC, __VA_ARGS__)
#define WEBSDK_DETAIL_PF_FACTORY_II(SC, c, name, guard, ...)                                           \
  static constexpr ::websdk::PageCallFactory<WEBSDK_DETAIL_FIRST_OF SC, WEBSDK_DETAIL_SECOND_OF SC::c, \
                                             WEBSDK_DETAIL_PF_RECORD(__VA_ARGS__)>                     \
      c{};
#define WEBSDK_DETAIL_FIRST_OF(a, b) a
#define WEBSDK_DETAIL_SECOND_OF(a, b) b

/// Declares the page functions native code calls, one row each:
/// (case, "function", guard) for a call without arguments, or
/// (case, "function", guard, "separator", Record, writing...) for one whose
/// case carries `Record`, each member written as its writing says. Declares
/// the case enumeration `Self##Case` and `Self##Table`: the typed payload
/// `Payload` that `Self` derives from, `pageFunction(case)`, and one factory
/// per case, named as the case, taking the record's members in order.
#define WEBSDK_PAGE_FUNCTIONS(Self, ...)                                                                               \
  enum class Self##Case{WEBSDK_FOR_EACH_ARG(WEBSDK_DETAIL_PF_CASE, _, __VA_ARGS__)};                                   \
  constexpr auto rawValues(Self##Case) {                                                                               \
    return std::to_array<::websdk::RawValue<Self##Case>>(                                                              \
        {WEBSDK_FOR_EACH_ARG(WEBSDK_DETAIL_PF_CASE_NAME, Self##Case, __VA_ARGS__)});                                   \
  }                                                                                                                    \
  class Self;                                                                                                          \
  struct Self##Table {                                                                                                 \
    using Payload = ::websdk::TaggedPayload<Self, Self##Case WEBSDK_FOR_EACH_ARG(WEBSDK_DETAIL_PF_CARRIES, Self##Case, \
                                                                                 __VA_ARGS__)>;                        \
    static constexpr ::websdk::PageFunction pageFunction(Self##Case c) {                                               \
      using enum ::websdk::PageArgument;                                                                               \
      using enum ::websdk::PageCallGuard;                                                                              \
      constexpr ::websdk::PageFunction rows[] = {WEBSDK_FOR_EACH_ARG(WEBSDK_DETAIL_PF_ROW, _, __VA_ARGS__)};           \
      const auto i = static_cast<std::size_t>(c);                                                                      \
      return i < std::size(rows) ? rows[i] : ::websdk::PageFunction{};                                                 \
    }                                                                                                                  \
    WEBSDK_FOR_EACH_ARG(WEBSDK_DETAIL_PF_FACTORY, (Self, Self##Case), __VA_ARGS__)                                     \
  };

namespace websdk {

// The page functions: adding one is one row. The page client's list
// (page/src/index.ts) and its typings are generated from this table by
// `websdk-inspect --catalogue`. searchQueryInput writes only the opening
// "SEARCH_QUERY_INPUT(": its query carries the rest of the call, its quotes
// and the closing parenthesis.
WEBSDK_PAGE_FUNCTIONS(
    WebSDKJSFunctionType,
    (keyboardStateChanged, "keyboardStateChanged", whenInWindow, ",", jsfunction::KeyboardState, boolean, number),
    (onScreenVisibility, "onScreenVisibility", none, ",", jsfunction::ScreenVisibility, boolean),
    (openDeeplink, "openDeeplink", none, ",", jsfunction::Deeplink, text),
    (userStateChange, "LOGIN_STATE_CHANGED", none, ",", jsfunction::UserState, quotedBool),
    (allowNativeBottomBarExit, "allowNativeBottomBarExit", none, ",", jsfunction::PayloadData, text),
    (searchQueryInput, "SEARCH_QUERY_INPUT", none, ",", jsfunction::SearchQuery, tail),
    (menuListInteracted, "swipeBottomsheet", none, ",", jsfunction::MenuListInteraction, boolean, boolean),
    (handlePXSearchActions, "HANDLE_PX_SEARCH_ACTIONS", none, ", ", jsfunction::PXSearchAction, text, text),
    (updateScratchCardsData, "updateScratchCardsData", none, ",", jsfunction::ScratchCardsData, text),
    (globalJSBridgeHandler, "globalJSBridgeHandler", none, ",", jsfunction::PayloadData, text),
    (getPXCartCallback, "BUILD_PX_CART", none), (handleSwipeGesture, "handleHardwareBack", none),
    (onHalfCardBackgroundTap, "onHalfCardBackgroundTap", none), (updateLocationHeader, "UPDATE_SELECTED_ADDRESS", none),
    (pageResume, "pageResume", whenDefined))

/// An event native code pushes to the page: a call of one page function, with
/// the values its case carries. Made by the factory of its case
/// (`WebSDKJSFunctionType::keyboardStateChanged(true, 320)`), each one a row of
/// the table above.
class WEBSDK_EXPORT WebSDKJSFunctionType : public WebSDKJSFunctionTypeTable::Payload, public WebSDKJSFunctionTypeTable {
 public:
  /// The same call with each text argument written as a JSON string literal
  /// ("O'Brien" arrives as O'Brien, whatever it holds), to the same page
  /// function. Use it for any text the app does not control.
  WebSDKJSFunctionType escaped() const {
    WebSDKJSFunctionType out = *this;
    out.escaped_ = true;
    return out;
  }
  /// Whether text arguments are written as JSON string literals.
  bool isEscaped() const { return escaped_; }
  /// What in a text argument would end its quotes early, or break the page's
  /// script, in the form as given ("a single quote in the argument", ...);
  /// nothing when the text is safe as given, or escaped.
  std::optional<std::string> breakingText() const;

  /// The call text evaluated in the page.
  std::string script() const;

 private:
  bool escaped_ = false;
};

/// Called once when an evaluation ends: the script's value, or nothing when
/// it returned nothing or failed.
using WebSDKJSCompletionHandler = std::function<void(std::optional<JSON>)>;

}  // namespace websdk
