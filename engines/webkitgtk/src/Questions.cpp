#include "Questions.hpp"

#include "Values.hpp"

namespace websdk::webkitgtk {

Questions::~Questions() {
  for (const auto& [id, held] : decisions_) {
    webkit_policy_decision_ignore(held.decision);
    g_object_unref(held.decision);
  }
  for (const auto& [id, request] : challenges_) {
    webkit_authentication_request_cancel(request);
    g_object_unref(request);
  }
}

std::uint64_t Questions::hold(WebKitPolicyDecision* decision, WebKitPolicyDecisionType type) {
  decisions_.emplace(++last_, HeldDecision{WEBKIT_POLICY_DECISION(g_object_ref(decision)),
                                           type == WEBKIT_POLICY_DECISION_TYPE_NAVIGATION_ACTION});
  return last_;
}

std::uint64_t Questions::hold(WebKitAuthenticationRequest* request) {
  challenges_.emplace(++last_, WEBKIT_AUTHENTICATION_REQUEST(g_object_ref(request)));
  return last_;
}

bool Questions::settle(std::uint64_t id, bool use) {
  const auto it = decisions_.find(id);
  if (it == decisions_.end()) return false;  // answered already: the first answer stands
  const HeldDecision held = it->second;
  decisions_.erase(it);
  if (use)
    webkit_policy_decision_use(held.decision);
  else
    webkit_policy_decision_ignore(held.decision);
  g_object_unref(held.decision);
  return !use && held.mainFrameNavigation;
}

void Questions::settle(std::uint64_t id, WebSDKAuthChallengeDisposition disposition,
                       const std::optional<WebSDKURLCredential>& credential) {
  const auto it = challenges_.find(id);
  if (it == challenges_.end()) return;
  WebKitAuthenticationRequest* request = it->second;
  challenges_.erase(it);
  answer(request, disposition, credential);
  g_object_unref(request);
}

}  // namespace websdk::webkitgtk
