#pragma once
// A push typed at websdk-serve's prompt (or read from a pushes file): a page
// function by its case name or its name in the page, then its arguments,
// the last of which takes the rest of the line:
//
//   updateLocationHeader                (or UPDATE_SELECTED_ADDRESS)
//   keyboardStateChanged true 300
//   globalJSBridgeHandler {"event":"refresh"}
//   js document.title                   any script; its value is printed

#include "websdk/webview/WebSDKJSFunctionType.hpp"

#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace websdk::serve {

/// A script to evaluate as it stands.
struct RawScript {
  std::string script;
};
/// What a line asks to push.
using Push = std::variant<WebSDKJSFunctionType, RawScript>;

/// The push `line` names, or nothing with `error` set.
std::optional<Push> readPush(std::string_view line, std::string& error);

/// The page functions, as the prompt's help lists them.
std::string pushHelp();

}  // namespace websdk::serve
