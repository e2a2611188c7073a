#pragma once
/// @file
/// The restaurant empathy family: the data of a restaurant's personal message
/// after an order, and sharing a message on a social platform.

#include "websdk/Export.hpp"
#include "websdk/bridge/RequestModel.hpp"
#include "websdk/json/ActionTable.hpp"
#include "websdk/json/Model.hpp"

#include <optional>
#include <string>

namespace websdk {

/// What the page asks to share; read from the request despite its name. Never
/// fails. A missing `message` or `title` stays absent, while a missing
/// `platform`, `url` or `image` reads as "", so a host can tell the two apart.
struct WEBSDK_EXPORT WebSDKShareSocialMediaResponseModel {
  /// The fields, read from the JSON keys of their names.
  ///@{
  std::optional<std::string> message;
  std::optional<std::string> title;
  std::optional<std::string> platform;
  std::optional<std::string> url;
  std::optional<std::string> image;
  ///@}

  WEBSDK_MODEL(WebSDKShareSocialMediaResponseModel, anyPayload, (message, strictString), (title, strictString),
               (platform, strictString, orEmpty), (url, strictString, orEmpty), (image, strictString, orEmpty))
};

/// The data of a restaurant's message, for hosts to build and send (the
/// WebSDK never builds one itself). Encoded with its field names.
struct WEBSDK_EXPORT WebSDKRestaurantEmpathyDataRequestModel {
  /// What the message's share button shares.
  struct ShareMessage {
    /// The fields, read from the JSON keys of their names. `buttonText` and `header` are required.
    ///@{
    std::string buttonText;
    std::string header;
    std::optional<std::string> message;
    std::optional<std::string> title;
    std::optional<std::string> url;
    ///@}

    /// Nothing unless "buttonText" and "header" are strings and each optional
    /// key is a string, null or missing.
    WEBSDK_MODEL(ShareMessage, needsPayload | strict, (buttonText, strictString, required),
                 (header, strictString, required), (message, strictString), (title, strictString), (url, strictString))
  };

  /// The fields, read from the JSON keys of their names. `imageId`, `header`, `message`, `share`, `userName`,
  /// `restaurantName` and `orderId` are required.
  ///@{
  std::string imageId;
  std::string header;
  std::string message;
  ShareMessage share;
  std::string userName;
  std::string restaurantName;
  std::string orderId;
  ///@}

  /// Nothing unless every key is present with its type ("share" a valid
  /// ShareMessage object).
  WEBSDK_MODEL(WebSDKRestaurantEmpathyDataRequestModel, needsPayload | strict, (imageId, strictString, required),
               (header, strictString, required), (message, strictString, required), (share, model, required),
               (userName, strictString, required), (restaurantName, strictString, required),
               (orderId, strictString, required))
};

WEBSDK_ACTIONS(WebSDKRestaurantEmpathyAction, WebSDKRestaurantEmpathyRequestPayload,
               (getRestaurantEmpathyData, "GET_RESTAURANT_EMPATHY_DATA", getRestaurantEmpathyData),
               (shareSocialMediaMessage, "SHARE_ON_SOCIAL_MEDIA", shareSocialMediaMessage,
                WebSDKShareSocialMediaResponseModel))

/// A request of the restaurant empathy family: its action, the page's request id and the raw payload.
using WebSDKRestaurantEmpathyRequestModel = WebSDKBridgeRequest<WebSDKRestaurantEmpathyAction>;

}  // namespace websdk
