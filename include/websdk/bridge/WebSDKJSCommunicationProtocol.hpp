#pragma once
/// @file
/// The host's listener for all bridge traffic: every request the page makes,
/// every answer sent to it, and what never ran there.

#include "websdk/Export.hpp"
#include "websdk/json/Enum.hpp"
#include "websdk/webview/WebSDKResponseModel.hpp"

#include <chrono>
#include <string>
#include <string_view>

namespace websdk {

/// A request handed to a plugin that has not been answered yet.
struct WEBSDK_EXPORT WebSDKPendingRequest {
  std::string requestId;                          ///< The page's id for it.
  std::string_view family;                        ///< The family's name ("cart", "payments", ...).
  std::string_view action;                        ///< The action string the page sent.
  std::chrono::steady_clock::time_point askedAt;  ///< When the page asked.
};

/// Why something sent to the page never ran there.
enum class WebSDKDropReason {
  /// The document it was meant for is gone: the page navigated (or was
  /// navigated) after asking.
  documentGone,
  /// The document shown is not on a whitelisted host (or there is none).
  pageNotWhitelisted,
  /// No page is waiting for it: its id was never asked, or was answered
  /// already (dropped only with `WebSDKConfig::dropsUnaskedAnswers`).
  notAsked,
};
/// Its name, as traffic recordings write it.
constexpr auto rawValues(WebSDKDropReason) {
  using enum WebSDKDropReason;
  return rawValueTable<WebSDKDropReason>(
      {{documentGone, "documentGone"}, {pageNotWhitelisted, "pageNotWhitelisted"}, {notAsked, "notAsked"}});
}

/// The host's listener for bridge traffic.
class WEBSDK_EXPORT WebSDKJSCommunicationProtocol {
 public:
  virtual ~WebSDKJSCommunicationProtocol() = default;
  /// Every envelope sent through the main-queue path; called on the sender's thread.
  virtual void didSendResponse(const WebSDKResponseModel& response) = 0;
  /// The text of every well-formed request, before the host check.
  virtual void didReceiveRequest(std::string_view request) = 0;
  /// An envelope already reported by didSendResponse that was not evaluated,
  /// and why. Called on the UI thread.
  virtual void didDropResponse(const WebSDKResponseModel& response, WebSDKDropReason reason) {
    (void)response, (void)reason;
  }
  /// A pushed page-function call that was not evaluated (`script` is its call
  /// text), and why. Called on the UI thread.
  virtual void didDropPush(std::string_view script, WebSDKDropReason reason) { (void)script, (void)reason; }
  /// A request its family's plugin had not answered by the family's deadline
  /// (`WebSDKConfig::answerDeadlines`). Called on the UI thread.
  virtual void didMissAnswerDeadline(const WebSDKPendingRequest& request) { (void)request; }
  /// A request whose reply was let go without an answer: the page was told
  /// it failed. Called on the UI thread.
  virtual void didAbandonRequest(const WebSDKPendingRequest& request) { (void)request; }
};

}  // namespace websdk
