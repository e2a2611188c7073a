#pragma once
// What the library's own tests, benchmarks and fuzzers reach inside a web view
// and a host never does: not installed.

#include "websdk/Export.hpp"
#include "websdk/bridge/WebSDKScriptHandler.hpp"
#include "websdk/webview/WebSDKWebView.hpp"

#include <memory>

namespace websdk {

struct WEBSDK_EXPORT WebViewInternals {
  /// The bridge that judges and routes `view`'s page messages: a test posts
  /// to it as the page would.
  static const std::shared_ptr<WebSDKScriptHandler>& handler(const WebSDKWebView& view);
};

}  // namespace websdk
