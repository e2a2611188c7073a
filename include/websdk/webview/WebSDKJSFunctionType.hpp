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
#include <functional>
#include <optional>
#include <string>
#include <string_view>

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

WEBSDK_NAMED_CASES(WebSDKJSFunctionTypeCase, keyboardStateChanged, onScreenVisibility, openDeeplink, userStateChange,
                   allowNativeBottomBarExit, searchQueryInput, menuListInteracted, handlePXSearchActions,
                   updateScratchCardsData, globalJSBridgeHandler, getPXCartCallback, handleSwipeGesture,
                   onHalfCardBackgroundTap, updateLocationHeader, pageResume)

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

/// An event native code pushes to the page: a call of one page function, with
/// the values its case carries. Made by the factory of its case.
class WEBSDK_EXPORT WebSDKJSFunctionType
    : public TaggedPayload<WebSDKJSFunctionType, WebSDKJSFunctionTypeCase,
                           Carries<WebSDKJSFunctionTypeCase::keyboardStateChanged, jsfunction::KeyboardState>,
                           Carries<WebSDKJSFunctionTypeCase::onScreenVisibility, jsfunction::ScreenVisibility>,
                           Carries<WebSDKJSFunctionTypeCase::openDeeplink, jsfunction::Deeplink>,
                           Carries<WebSDKJSFunctionTypeCase::userStateChange, jsfunction::UserState>,
                           Carries<WebSDKJSFunctionTypeCase::allowNativeBottomBarExit, jsfunction::PayloadData>,
                           Carries<WebSDKJSFunctionTypeCase::searchQueryInput, jsfunction::SearchQuery>,
                           Carries<WebSDKJSFunctionTypeCase::menuListInteracted, jsfunction::MenuListInteraction>,
                           Carries<WebSDKJSFunctionTypeCase::handlePXSearchActions, jsfunction::PXSearchAction>,
                           Carries<WebSDKJSFunctionTypeCase::updateScratchCardsData, jsfunction::ScratchCardsData>,
                           Carries<WebSDKJSFunctionTypeCase::globalJSBridgeHandler, jsfunction::PayloadData>> {
 public:
  /// The event of the case of the same name, carrying these values.
  ///@{
  static WebSDKJSFunctionType keyboardStateChanged(bool visible, double height) {
    return make<Case::keyboardStateChanged>({visible, height});
  }
  static WebSDKJSFunctionType onScreenVisibility(bool isVisible) { return make<Case::onScreenVisibility>({isVisible}); }
  static WebSDKJSFunctionType openDeeplink(std::string url) { return make<Case::openDeeplink>({std::move(url)}); }
  static WebSDKJSFunctionType userStateChange(bool loggedin) { return make<Case::userStateChange>({loggedin}); }
  static WebSDKJSFunctionType allowNativeBottomBarExit(std::string payloadData) {
    return make<Case::allowNativeBottomBarExit>({std::move(payloadData)});
  }
  ///@}
  /// Only the opening "SEARCH_QUERY_INPUT(" is written: `query` carries the
  /// rest of the call, its quotes and the closing parenthesis.
  static WebSDKJSFunctionType searchQueryInput(std::string query) {
    return make<Case::searchQueryInput>({std::move(query)});
  }
  /// The event of the case of the same name, carrying these values (if any).
  ///@{
  static WebSDKJSFunctionType menuListInteracted(bool playVideo, bool menuClick) {
    return make<Case::menuListInteracted>({playVideo, menuClick});
  }
  static WebSDKJSFunctionType handlePXSearchActions(std::string query, std::string type) {
    return make<Case::handlePXSearchActions>({std::move(query), std::move(type)});
  }
  static WebSDKJSFunctionType updateScratchCardsData(std::string cardData) {
    return make<Case::updateScratchCardsData>({std::move(cardData)});
  }
  static WebSDKJSFunctionType globalJSBridgeHandler(std::string payloadData) {
    return make<Case::globalJSBridgeHandler>({std::move(payloadData)});
  }
  static WebSDKJSFunctionType getPXCartCallback() { return make<Case::getPXCartCallback>(); }
  static WebSDKJSFunctionType handleSwipeGesture() { return make<Case::handleSwipeGesture>(); }
  static WebSDKJSFunctionType onHalfCardBackgroundTap() { return make<Case::onHalfCardBackgroundTap>(); }
  static WebSDKJSFunctionType updateLocationHeader() { return make<Case::updateLocationHeader>(); }
  static WebSDKJSFunctionType pageResume() { return make<Case::pageResume>(); }
  ///@}

  /// The page function case C calls.
  static constexpr PageFunction pageFunction(Case c) {
    using enum PageArgument;
    using enum PageCallGuard;
    switch (c) {
      case Case::keyboardStateChanged: return {"keyboardStateChanged", whenInWindow, ",", {boolean, number}};
      case Case::onScreenVisibility: return {"onScreenVisibility", none, ",", {boolean}};
      case Case::openDeeplink: return {"openDeeplink", none, ",", {text}};
      case Case::userStateChange: return {"LOGIN_STATE_CHANGED", none, ",", {quotedBool}};
      case Case::allowNativeBottomBarExit: return {"allowNativeBottomBarExit", none, ",", {text}};
      case Case::searchQueryInput: return {"SEARCH_QUERY_INPUT", none, ",", {tail}};
      case Case::menuListInteracted: return {"swipeBottomsheet", none, ",", {boolean, boolean}};
      case Case::handlePXSearchActions: return {"HANDLE_PX_SEARCH_ACTIONS", none, ", ", {text, text}};
      case Case::updateScratchCardsData: return {"updateScratchCardsData", none, ",", {text}};
      case Case::globalJSBridgeHandler: return {"globalJSBridgeHandler", none, ",", {text}};
      case Case::getPXCartCallback: return {"BUILD_PX_CART"};
      case Case::handleSwipeGesture: return {"handleHardwareBack"};
      case Case::onHalfCardBackgroundTap: return {"onHalfCardBackgroundTap"};
      case Case::updateLocationHeader: return {"UPDATE_SELECTED_ADDRESS"};
      case Case::pageResume: return {"pageResume", whenDefined};
    }
    return {};
  }

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
