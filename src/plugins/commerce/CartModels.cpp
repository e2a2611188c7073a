#include "websdk/plugins/commerce/CartModels.hpp"

namespace websdk {

std::optional<WebSDKGetCartRequestModel> WebSDKGetCartRequestModel::from(const std::optional<JSONObject>& payload) {
  const Fields tenant = Fields(payload).nested("tenant");
  if (tenant.absent()) return std::nullopt;
  return WebSDKGetCartRequestModel{tenant.lenientString("marketplaceId"), tenant.lenientString("marketplaceCategory"),
                                   tenant.lenientString("marketplaceBusinessLine")};
}

std::optional<WebSDKUpdateCartRequestModel> WebSDKUpdateCartRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  return WebSDKUpdateCartRequestModel{p.object("tenant"), p.object("data")};
}

}  // namespace websdk
