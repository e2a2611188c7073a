#include "websdk/webview/WebSDKJSFunctionType.hpp"

namespace websdk {
namespace {

std::string_view b(bool value) { return value ? "true" : "false"; }

// "name('" + argument + "')": the argument goes in raw between single quotes.
std::string quotedCall(std::string_view name, std::string_view argument) {
  std::string out;
  out.reserve(name.size() + argument.size() + 4);
  out.append(name).append("('").append(argument).append("')");
  return out;
}

}  // namespace

std::string WebSDKJSFunctionType::script() const {
  switch (kind()) {
    case Case::keyboardStateChanged: {
      const auto& a = *get<Case::keyboardStateChanged>();
      return "if ('keyboardStateChanged' in window){ window.keyboardStateChanged(" + std::string(b(a.visible)) + "," +
             formatDouble(a.height) + "); }";
    }
    case Case::onScreenVisibility:
      return "onScreenVisibility(" + std::string(b(get<Case::onScreenVisibility>()->isVisible)) + ")";
    case Case::openDeeplink: return quotedCall("openDeeplink", get<Case::openDeeplink>()->url);
    case Case::userStateChange: return quotedCall("LOGIN_STATE_CHANGED", b(get<Case::userStateChange>()->loggedin));
    case Case::allowNativeBottomBarExit:
      return quotedCall("allowNativeBottomBarExit", get<Case::allowNativeBottomBarExit>()->payloadData);
    case Case::searchQueryInput: return "SEARCH_QUERY_INPUT(" + get<Case::searchQueryInput>()->query;
    case Case::menuListInteracted: {
      const auto& a = *get<Case::menuListInteracted>();
      return "swipeBottomsheet(" + std::string(b(a.playVideo)) + "," + std::string(b(a.menuClick)) + ")";
    }
    case Case::handlePXSearchActions: {
      const auto& a = *get<Case::handlePXSearchActions>();
      return "HANDLE_PX_SEARCH_ACTIONS('" + a.query + "', '" + a.type + "')";
    }
    case Case::updateScratchCardsData:
      return quotedCall("updateScratchCardsData", get<Case::updateScratchCardsData>()->cardData);
    case Case::globalJSBridgeHandler:
      return quotedCall("globalJSBridgeHandler", get<Case::globalJSBridgeHandler>()->payloadData);
    case Case::getPXCartCallback: return "BUILD_PX_CART()";
    case Case::handleSwipeGesture: return "handleHardwareBack()";
    case Case::onHalfCardBackgroundTap: return "onHalfCardBackgroundTap()";
    case Case::updateLocationHeader: return "UPDATE_SELECTED_ADDRESS()";
    case Case::pageResume: return "window.pageResume && window.pageResume()";
  }
  return {};
}

}  // namespace websdk
