#include "websdk/plugins/commerce/RestaurantEmpathy.hpp"

namespace websdk {
namespace {

// Hosts decode these records from their own stored or received JSON, so the
// reading is strict: a required key must be there with its type, and an
// optional one, when present and not null, must have its type too.
struct StrictReader {
  Fields fields;
  bool ok = true;

  std::string required(std::string_view key) {
    auto s = fields.strictString(key);
    if (!s) ok = false;
    return s.value_or("");
  }
  std::optional<std::string> optional(std::string_view key) {
    const JSON* v = fields[key];
    if (v == nullptr || v->is_null()) return std::nullopt;
    auto s = strictString(v);
    if (!s) ok = false;
    return s;
  }
};

}  // namespace

std::optional<WebSDKShareSocialMediaResponseModel> WebSDKShareSocialMediaResponseModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  return WebSDKShareSocialMediaResponseModel{p.strictString("message"), p.strictString("title"),
                                             p.strictString("platform").value_or(""),
                                             p.strictString("url").value_or(""), p.strictString("image").value_or("")};
}

std::optional<WebSDKRestaurantEmpathyDataRequestModel::ShareMessage>
WebSDKRestaurantEmpathyDataRequestModel::ShareMessage::from(const std::optional<JSONObject>& json) {
  if (!json) return std::nullopt;
  StrictReader r{Fields(json)};
  ShareMessage share{r.required("buttonText"), r.required("header"), r.optional("message"), r.optional("title"),
                     r.optional("url")};
  if (!r.ok) return std::nullopt;
  return share;
}

std::optional<WebSDKRestaurantEmpathyDataRequestModel> WebSDKRestaurantEmpathyDataRequestModel::from(
    const std::optional<JSONObject>& json) {
  if (!json) return std::nullopt;
  StrictReader r{Fields(json)};
  auto share = ShareMessage::from(r.fields.object("share"));
  if (!share) return std::nullopt;
  WebSDKRestaurantEmpathyDataRequestModel model{
      r.required("imageId"),  r.required("header"),         r.required("message"), std::move(*share),
      r.required("userName"), r.required("restaurantName"), r.required("orderId")};
  if (!r.ok) return std::nullopt;
  return model;
}

std::optional<WebSDKRestaurantEmpathyRequestPayload> WebSDKRestaurantEmpathyRequestPayload::validateRequest(
    const WebSDKRestaurantEmpathyRequestModel& request) {
  using P = WebSDKRestaurantEmpathyRequestPayload;
  using enum WebSDKRestaurantEmpathyRequestPayloadCase;
  switch (request.type) {
    case WebSDKRestaurantEmpathyAction::getRestaurantEmpathyData: return P::make<getRestaurantEmpathyData>();
    case WebSDKRestaurantEmpathyAction::shareSocialMediaMessage:
      return P::decode<shareSocialMediaMessage>(request.payload);
  }
  return std::nullopt;
}

}  // namespace websdk
