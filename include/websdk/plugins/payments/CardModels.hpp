#pragma once
// One-click card payments: which saved cards are eligible, and de-enrolling or
// deleting a card. The card records are decoded strictly, as a keyed record
// decoder would: every required member must be there with exactly its JSON
// type (a number sent as text is refused), optional members may be missing or
// null, and members the record does not know are ignored.

#include "websdk/Export.hpp"
#include "websdk/json/Readings.hpp"
#include "websdk/json/Record.hpp"

#include <optional>
#include <string>
#include <vector>

namespace websdk {

// ---- Requests ----------------------------------------------------------------

/// "GET_ONE_CLICK_CARD_ELIGIBILITY". Fails unless "cardDetails" is a list of
/// cards that decodes strictly; a missing "action" or "amount" is only "".
struct WEBSDK_EXPORT WebSDKGetOneClickCardEligibilityRequestModel {
  struct Card {
    std::string cardFingerPrint;
    std::string cardBin;
    std::vector<std::string> checkType;

    /// Strict: all three members required.
    static std::optional<Card> decode(const JSON& value);
    WEBSDK_RECORD(Card, cardFingerPrint, cardBin, checkType)
  };

  std::string action;
  std::string amount;
  std::vector<Card> cardDetails;

  static std::optional<WebSDKGetOneClickCardEligibilityRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKGetOneClickCardEligibilityRequestModel, action, amount, cardDetails)
};

/// What the provider is to do with the card, whichever page action asked.
enum class ManageCardAction { viesDeleteCard, viesDeEnrol };
constexpr auto rawValues(ManageCardAction) {
  using enum ManageCardAction;
  return rawValueTable<ManageCardAction>({{viesDeleteCard, "VIES_DELETE_CARD"}, {viesDeEnrol, "VIES_DISENROLL"}});
}

struct WEBSDK_EXPORT CardDetail {
  std::string cardBin;
  std::string cardFingerPrint;
  std::string maskedCardNumber;

  /// Strict: all three members required.
  static std::optional<CardDetail> decode(const JSON& value);
  WEBSDK_RECORD(CardDetail, cardBin, cardFingerPrint, maskedCardNumber)
};

/// "ONE_CLICK_DE_ENROLL" and "DELETE_CARD". Fails unless "action" is exactly a
/// `ManageCardAction` string and "cardDetail" decodes strictly; a missing
/// "juspayClientAuthToken" is "".
struct WEBSDK_EXPORT WebSDKOneClickManageCardRequestModel {
  ManageCardAction action{};
  CardDetail cardDetail;
  std::string juspayClientAuthToken;

  static std::optional<WebSDKOneClickManageCardRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKOneClickManageCardRequestModel, action, cardDetail, juspayClientAuthToken)
};

// ---- Responses -----------------------------------------------------------------

/// The user's cards with their one-click standing. Encodes and decodes with
/// its field names; the page gets the provider's vocabulary back through
/// getCardEligiblityDetailsDict().
struct WEBSDK_EXPORT WebSDKGetOneClickCardEligibilityResponseModel {
  struct Vies {
    bool eligibility = false;
    bool enrolled = false;
    std::optional<std::string> responseMsg{};
    bool expired = false;

    static std::optional<Vies> decode(const JSON& value);
    WEBSDK_RECORD(Vies, eligibility, enrolled, responseMsg, expired)
  };

  struct CheckType {
    Vies vies{};

    static std::optional<CheckType> decode(const JSON& value);
    WEBSDK_RECORD(CheckType, vies)
  };

  struct CardEligiblityDetail {
    CheckType checkType{};
    std::string cardBin{};
    std::string cardFingerPrint{};

    static std::optional<CardEligiblityDetail> decode(const JSON& value);
    WEBSDK_RECORD(CardEligiblityDetail, checkType, cardBin, cardFingerPrint)
  };

  std::vector<CardEligiblityDetail> cardEligiblityDetails{};

  /// From the provider's answer: the cards under "payload"."cards", each with
  /// a string "cardBin", a string "cardAlias" (the fingerprint) and a strictly
  /// decodable "checkType". Cards that fail are skipped; nothing when none is
  /// left.
  static std::optional<WebSDKGetOneClickCardEligibilityResponseModel> from(const std::optional<JSONObject>& answer);
  /// From the model's own encoding (field names as keys), strictly.
  static std::optional<WebSDKGetOneClickCardEligibilityResponseModel> decode(const JSON& value);

  /// One dictionary per card for the page: "check_type" ({"vies": {...}}),
  /// "cardBin" and "cardAlias".
  std::vector<JSONObject> getCardEligiblityDetailsDict() const;

  WEBSDK_RECORD(WebSDKGetOneClickCardEligibilityResponseModel, cardEligiblityDetails)
};

struct WEBSDK_EXPORT WebSDKOneClickDeEnrollResponseModel {
  bool isDeEnrolled = false;

  static std::optional<WebSDKOneClickDeEnrollResponseModel> decode(const JSON& value);
  WEBSDK_RECORD(WebSDKOneClickDeEnrollResponseModel, isDeEnrolled)
};

struct WEBSDK_EXPORT WebSDKOneClickDeleteResponseModel {
  bool isDeleted = false;
  std::string errorMessage{};
  std::string errorCode{};

  static std::optional<WebSDKOneClickDeleteResponseModel> decode(const JSON& value);
  WEBSDK_RECORD(WebSDKOneClickDeleteResponseModel, isDeleted, errorMessage, errorCode)
};

}  // namespace websdk
