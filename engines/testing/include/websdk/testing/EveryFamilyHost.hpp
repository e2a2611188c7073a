#pragma once
/// @file
/// One host object that serves all twelve families, and the wiring that
/// registers it for each of them. Every delivery goes to `onRequest` with the
/// family's name, the action string, the request id and the typed payload's
/// description, so tests, fuzzers and tools can record, answer or release as
/// they need.

#include "websdk/Export.hpp"
#include "websdk/bridge/Families.hpp"
#include "websdk/webview/WebSDKWebView.hpp"

#include <functional>
#include <memory>
#include <string_view>
#include <tuple>

namespace websdk::testing {

namespace detail {
template <class Host, class Families>
struct ServingAll;
template <class Host, class... F>
struct ServingAll<Host, std::tuple<F...>> : F::template Serving<Host>... {};
}  // namespace detail

/// One plugin for all twelve families: each request it gets goes to a single
/// handler, as its family, action, id and typed payload's description.
class WEBSDK_EXPORT EveryFamilyHost final : public detail::ServingAll<EveryFamilyHost, BridgeFamilies> {
 public:
  /// One request as the handler gets it (valid for the call).
  struct Delivery {
    std::string_view family;       ///< The family's name.
    std::string_view action;       ///< The action string.
    const std::string& requestId;  ///< The page's id for it.
    JSON payload;                  ///< The typed payload's description.
  };
  /// Takes each request delivered.
  using Handler = std::function<void(const Delivery&)>;
  /// A host whose requests all go to `onRequest`.
  explicit EveryFamilyHost(Handler onRequest) : onRequest_(std::move(onRequest)) {}

  /// Every family's operation lands here.
  template <class F>
  void serve(const typename F::Request& request, const typename F::Payload& payload) {
    if (onRequest_) onRequest_(Delivery{F::name, rawValue(request.type), request.requestId, payload.describe()});
  }

 private:
  Handler onRequest_;
};

/// A plugin of family F (the library's or a host's) that takes every request
/// and answers none, as EveryFamilyHost does.
template <class F>
using SilentPlugin = websdk::detail::SilentPlugin<F>;

/// Registers `host` on `view` for every family.
inline void registerForEveryFamily(WebSDKWebView& view, const std::shared_ptr<EveryFamilyHost>& host) {
  forEachFamily([&]<class F>(F) { view.setPlugin<F>(host); });
}

}  // namespace websdk::testing
