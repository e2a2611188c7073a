#pragma once
/// @file
/// A host's event written from a model: its data is the model's keys, as the
/// model declares them (the same declaration the host's catalogue gives its
/// pages' typings), and its sensitive fields are masked in the recording.

#include "websdk/bridge/Family.hpp"
#include "websdk/json/Record.hpp"
#include "websdk/webview/WebSDKWebView.hpp"

#include <set>
#include <string>
#include <string_view>

namespace websdk {

/// Pushes event `name` to `view`'s page with `data`, written from its
/// model's declaration; see WebSDKWebView::emitEvent. Any thread.
template <Declared Model>
bool emitEvent(WebSDKWebView& view, std::string_view name, const Model& data) {
  static const auto sensitive = [] {
    std::set<std::string, std::less<>> keys;
    detail::collectSensitive<Model>(keys);
    return keys;
  }();
  return view.emitEvent(name, toJSON(data), sensitive);
}

}  // namespace websdk
