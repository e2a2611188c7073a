#include "websdk/plugins/payments/CardModels.hpp"

#include <utility>

namespace websdk {

using EligibilityResponse = WebSDKGetOneClickCardEligibilityResponseModel;

std::optional<EligibilityResponse> EligibilityResponse::from(const std::optional<JSONObject>& answer) {
  const JSON* cardsValue = Fields(answer).nested("payload")["cards"];
  const auto* cards = cardsValue ? cardsValue->if_array() : nullptr;
  if (cards == nullptr) return std::nullopt;
  EligibilityResponse model;
  for (const auto& card : *cards) {
    const Fields c = Fields::of(&card);
    auto cardBin = c.strictString("cardBin");
    auto cardAlias = c.strictString("cardAlias");
    const JSON* checkTypeValue = c["checkType"];
    auto checkType = checkTypeValue ? CheckType::decode(*checkTypeValue) : std::nullopt;
    if (!cardBin || !cardAlias || !checkType) continue;  // one unreadable card does not hide the others
    model.cardEligiblityDetails.push_back({std::move(*checkType), std::move(*cardBin), std::move(*cardAlias)});
  }
  if (model.cardEligiblityDetails.empty()) return std::nullopt;
  return model;
}

std::optional<EligibilityResponse> EligibilityResponse::decode(const JSON& value) {
  const auto* object = value.if_object();
  if (object == nullptr) return std::nullopt;
  auto details =
      reading::modelList.read<std::vector<CardEligiblityDetail>>(object->if_contains("cardEligiblityDetails"));
  if (!details) return std::nullopt;
  return EligibilityResponse{std::move(*details)};
}

std::vector<JSONObject> EligibilityResponse::getCardEligiblityDetailsDict() const {
  std::vector<JSONObject> out;
  out.reserve(cardEligiblityDetails.size());
  for (const auto& detail : cardEligiblityDetails) {
    JSONObject d;
    d.emplace("check_type", toJSONObject(detail.checkType, FieldNaming::names));
    d.emplace("cardBin", detail.cardBin);
    d.emplace("cardAlias", detail.cardFingerPrint);
    out.push_back(std::move(d));
  }
  return out;
}

}  // namespace websdk
