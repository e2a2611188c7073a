#pragma once
// The restaurant empathy family: the data of a restaurant's personal message
// after an order, and sharing a message on a social platform.

#include "websdk/Export.hpp"
#include "websdk/bridge/RequestModel.hpp"
#include "websdk/json/Payload.hpp"

#include <optional>
#include <string>

namespace websdk {

enum class WebSDKRestaurantEmpathyAction { getRestaurantEmpathyData, shareSocialMediaMessage };
constexpr auto rawValues(WebSDKRestaurantEmpathyAction) {
  using enum WebSDKRestaurantEmpathyAction;
  return rawValueTable<WebSDKRestaurantEmpathyAction>(
      {{getRestaurantEmpathyData, "GET_RESTAURANT_EMPATHY_DATA"}, {shareSocialMediaMessage, "SHARE_ON_SOCIAL_MEDIA"}});
}

using WebSDKRestaurantEmpathyRequestModel = WebSDKBridgeRequest<WebSDKRestaurantEmpathyAction>;

/// What the page asks to share; read from the request despite its name. Never
/// fails. A missing `message` or `title` stays absent, while a missing
/// `platform`, `url` or `image` reads as "", so a host can tell the two apart.
struct WEBSDK_EXPORT WebSDKShareSocialMediaResponseModel {
  std::optional<std::string> message;
  std::optional<std::string> title;
  std::optional<std::string> platform;
  std::optional<std::string> url;
  std::optional<std::string> image;

  static std::optional<WebSDKShareSocialMediaResponseModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKShareSocialMediaResponseModel, message, title, platform, url, image)
};

/// The data of a restaurant's message, for hosts to build and send (the
/// WebSDK never builds one itself). Encoded with its field names.
struct WEBSDK_EXPORT WebSDKRestaurantEmpathyDataRequestModel {
  struct ShareMessage {
    std::string buttonText;
    std::string header;
    std::optional<std::string> message;
    std::optional<std::string> title;
    std::optional<std::string> url;

    /// Nothing unless "buttonText" and "header" are strings and each optional
    /// key is a string, null or missing.
    static std::optional<ShareMessage> from(const std::optional<JSONObject>& json);
    WEBSDK_RECORD(ShareMessage, buttonText, header, message, title, url)
  };

  std::string imageId;
  std::string header;
  std::string message;
  ShareMessage share;
  std::string userName;
  std::string restaurantName;
  std::string orderId;

  /// Nothing unless every key is present with its type ("share" a valid
  /// ShareMessage object).
  static std::optional<WebSDKRestaurantEmpathyDataRequestModel> from(const std::optional<JSONObject>& json);
  WEBSDK_RECORD(WebSDKRestaurantEmpathyDataRequestModel, imageId, header, message, share, userName, restaurantName,
                orderId)
};

WEBSDK_NAMED_CASES(WebSDKRestaurantEmpathyRequestPayloadCase, shareSocialMediaMessage, getRestaurantEmpathyData)
class WEBSDK_EXPORT WebSDKRestaurantEmpathyRequestPayload
    : public TaggedPayload<WebSDKRestaurantEmpathyRequestPayload, WebSDKRestaurantEmpathyRequestPayloadCase,
                           Carries<WebSDKRestaurantEmpathyRequestPayloadCase::shareSocialMediaMessage,
                                   WebSDKShareSocialMediaResponseModel>> {
 public:
  /// Never yields nothing: both actions decode from any payload.
  static std::optional<WebSDKRestaurantEmpathyRequestPayload> validateRequest(
      const WebSDKRestaurantEmpathyRequestModel& request);
};

}  // namespace websdk
