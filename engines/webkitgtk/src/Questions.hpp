#pragma once
// WebKit's questions the client has not answered yet. An unanswered WebKit
// decision would be taken by default when its last reference goes, so each
// is held until answered, or refused for good when the engine goes.

#include "websdk/webkitgtk/Native.hpp"
#include "websdk/webview/WebEngine.hpp"

#include <cstdint>
#include <map>
#include <optional>

namespace websdk::webkitgtk {

class Questions {
 public:
  Questions() = default;
  Questions(const Questions&) = delete;
  Questions& operator=(const Questions&) = delete;
  /// Refuses every question still held: nothing may proceed on their account.
  ~Questions();

  /// Holds `decision` (of `type`) until settled; returns its number.
  std::uint64_t hold(WebKitPolicyDecision* decision, WebKitPolicyDecisionType type);
  /// Holds `request` until settled; returns its number.
  std::uint64_t hold(WebKitAuthenticationRequest* request);
  /// Uses or ignores decision `id`; the first answer stands. Returns true
  /// when that refused a main-frame navigation: the load it starts never comes.
  bool settle(std::uint64_t id, bool use);
  /// Answers challenge `id` as `disposition` says; the first answer stands.
  void settle(std::uint64_t id, WebSDKAuthChallengeDisposition disposition,
              const std::optional<WebSDKURLCredential>& credential);

 private:
  struct HeldDecision {
    WebKitPolicyDecision* decision;
    bool mainFrameNavigation;
  };
  std::uint64_t last_ = 0;
  std::map<std::uint64_t, HeldDecision> decisions_;
  std::map<std::uint64_t, WebKitAuthenticationRequest*> challenges_;
};

}  // namespace websdk::webkitgtk
