#pragma once
// How the bridge hands a plugin its request's reply: while a plugin's call is
// under way, the request's binding is on offer to `takeReply` on that thread.

#include "websdk/bridge/WebSDKReply.hpp"
#include "websdk/bridge/WebSDKScriptHandler.hpp"

#include <memory>
#include <string>

namespace websdk {

namespace detail {

/// Offers one request's reply on this thread for as long as it lives; offers
/// nest (a plugin may run the loop, and so another plugin, inside its call).
class ReplyOffer {
 public:
  /// `view` and `requestId` must outlive the offer (they are the handler's
  /// and the request's): nothing is copied unless the plugin takes the reply.
  ReplyOffer(const std::weak_ptr<BridgeView>& view, std::string_view requestId, DocumentID document,
             std::uint64_t serial) noexcept;
  ~ReplyOffer();
  ReplyOffer(const ReplyOffer&) = delete;
  ReplyOffer& operator=(const ReplyOffer&) = delete;

 private:
  friend WebSDKReply websdk::takeReply(std::string_view requestId);
  const std::weak_ptr<BridgeView>& view_;
  std::string_view requestId_;
  DocumentID document_;
  std::uint64_t serial_;
  bool taken_ = false;
  ReplyOffer* outer_;
};

}  // namespace detail
}  // namespace websdk
