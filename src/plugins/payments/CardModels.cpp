#include "websdk/plugins/payments/CardModels.hpp"

#include <utility>

namespace websdk {

using EligibilityResponse = WebSDKGetOneClickCardEligibilityResponseModel;

// Named, not anonymous: every declaration brings an equality, which clang
// would report as unused in an anonymous namespace.
namespace cardmodels {
using Detail = EligibilityResponse::CardEligiblityDetail;

// A card as the provider answers it: its fingerprint is its "cardAlias".
struct ProviderCard {
  EligibilityResponse::CheckType checkType{};
  std::string cardBin{};
  std::string cardFingerPrint{};
  WEBSDK_MODEL(ProviderCard, needsPayload, (checkType, model, required), (cardBin, strictString, required),
               (cardFingerPrint, strictString, "cardAlias", required, sensitive))
};

// The provider's answer: one unreadable card does not hide the others.
struct ProviderAnswer {
  std::vector<ProviderCard> cards;
  WEBSDK_MODEL(ProviderAnswer, anyPayload, (cards, modelsThatDecode, "payload.cards", required))
};

// The model's own encoding.
struct Encoded {
  std::vector<Detail> cardEligiblityDetails;
  WEBSDK_MODEL(Encoded, needsPayload, (cardEligiblityDetails, modelList, required))
};

// A card as the page gets it back: the provider's vocabulary, "check_type" and "cardAlias".
struct PageCard {
  EligibilityResponse::CheckType checkType{};
  std::string cardBin{};
  std::string cardFingerPrint{};
  WEBSDK_KEYED_RECORD(PageCard, (checkType, "check_type"), (cardBin, "cardBin"), (cardFingerPrint, "cardAlias"))
};
}  // namespace cardmodels
using namespace cardmodels;

std::optional<EligibilityResponse> EligibilityResponse::from(const std::optional<JSONObject>& answer) {
  auto read = ProviderAnswer::from(answer);
  if (!read || read->cards.empty()) return std::nullopt;
  EligibilityResponse model;
  for (auto& card : read->cards)
    model.cardEligiblityDetails.push_back(
        {std::move(card.checkType), std::move(card.cardBin), std::move(card.cardFingerPrint)});
  return model;
}

std::optional<EligibilityResponse> EligibilityResponse::decode(const JSON& value) {
  auto read = Encoded::decode(value);
  if (!read) return std::nullopt;
  return EligibilityResponse{std::move(read->cardEligiblityDetails)};
}

std::vector<JSONObject> EligibilityResponse::getCardEligiblityDetailsDict() const {
  std::vector<JSONObject> out;
  out.reserve(cardEligiblityDetails.size());
  for (const auto& detail : cardEligiblityDetails)
    out.push_back(toJSONObject(PageCard{detail.checkType, detail.cardBin, detail.cardFingerPrint}));
  return out;
}

}  // namespace websdk
