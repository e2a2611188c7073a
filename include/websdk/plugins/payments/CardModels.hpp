#pragma once
/// @file
/// One-click card payments: which saved cards are eligible, and de-enrolling or
/// deleting a card. The card records are decoded strictly, as a keyed record
/// decoder would: every required member must be there with exactly its JSON
/// type (a number sent as text is refused), optional members may be missing or
/// null, and members the record does not know are ignored.

#include "websdk/Export.hpp"
#include "websdk/json/Model.hpp"

#include <optional>
#include <string>
#include <vector>

namespace websdk {

// ---- Requests ----------------------------------------------------------------

/// "GET_ONE_CLICK_CARD_ELIGIBILITY". Fails unless "cardDetails" is a list of
/// cards that decodes strictly; a missing "action" or "amount" is only "".
struct WEBSDK_EXPORT WebSDKGetOneClickCardEligibilityRequestModel {
  /// A card to check, by its BIN and fingerprint, with the checks wanted.
  struct Card {
    /// The fields, read from the JSON keys of their names. `cardFingerPrint`, `cardBin` and `checkType` are required.
    /// `cardFingerPrint` is the user's own, masked in recordings.
    ///@{
    std::string cardFingerPrint;
    std::string cardBin;
    std::vector<std::string> checkType;
    ///@}

    /// Strict: all three members required.
    WEBSDK_MODEL(Card, needsPayload | strict, (cardFingerPrint, strictString, required, sensitive),
                 (cardBin, strictString, required), (checkType, strictStringList, required))
  };

  /// The fields, read from the JSON keys of their names. `cardDetails` is required.
  ///@{
  std::string action;
  std::string amount;
  std::vector<Card> cardDetails;
  ///@}

  WEBSDK_MODEL(WebSDKGetOneClickCardEligibilityRequestModel, anyPayload, (action, strictString), (amount, strictString),
               (cardDetails, modelList, required))
};

/// What the provider is to do with the card, whichever page action asked.
enum class ManageCardAction { viesDeleteCard, viesDeEnrol };
constexpr auto rawValues(ManageCardAction) {
  using enum ManageCardAction;
  return rawValueTable<ManageCardAction>({{viesDeleteCard, "VIES_DELETE_CARD"}, {viesDeEnrol, "VIES_DISENROLL"}});
}

/// The card a manage-card request is about.
struct WEBSDK_EXPORT CardDetail {
  /// The fields, read from the JSON keys of their names. `cardBin`, `cardFingerPrint` and `maskedCardNumber` are
  /// required. `cardFingerPrint` is the user's own, masked in recordings.
  ///@{
  std::string cardBin;
  std::string cardFingerPrint;
  std::string maskedCardNumber;
  ///@}

  /// Strict: all three members required.
  WEBSDK_MODEL(CardDetail, needsPayload | strict, (cardBin, strictString, required),
               (cardFingerPrint, strictString, required, sensitive), (maskedCardNumber, strictString, required))
};

/// "ONE_CLICK_DE_ENROLL" and "DELETE_CARD". Fails unless "action" is exactly a
/// `ManageCardAction` string and "cardDetail" decodes strictly; a missing
/// "juspayClientAuthToken" is "".
struct WEBSDK_EXPORT WebSDKOneClickManageCardRequestModel {
  /// The fields, read from the JSON keys of their names. `action` and `cardDetail` are required.
  /// `juspayClientAuthToken` is the user's own, masked in recordings.
  ///@{
  ManageCardAction action{};
  CardDetail cardDetail;
  std::string juspayClientAuthToken;
  ///@}

  WEBSDK_MODEL(WebSDKOneClickManageCardRequestModel, anyPayload, (action, enumeration, required),
               (cardDetail, model, required), (juspayClientAuthToken, strictString, sensitive))
};

// ---- Responses -----------------------------------------------------------------

/// The user's cards with their one-click standing. Encodes and decodes with
/// its field names; the page gets the provider's vocabulary back through
/// getCardEligiblityDetailsDict().
struct WEBSDK_EXPORT WebSDKGetOneClickCardEligibilityResponseModel {
  /// A card's standing with VIES: eligible, enrolled, expired.
  struct Vies {
    /// The fields, read from the JSON keys of their names. `eligibility`, `enrolled` and `expired` are required.
    ///@{
    bool eligibility = false;
    bool enrolled = false;
    std::optional<std::string> responseMsg{};
    bool expired = false;
    ///@}

    WEBSDK_MODEL(Vies, needsPayload | strict, (eligibility, strictBool, required), (enrolled, strictBool, required),
                 (responseMsg, strictString), (expired, strictBool, required))
  };

  /// The checks made on a card.
  struct CheckType {
    /// Read from the JSON key of its name; required.
    Vies vies{};

    WEBSDK_MODEL(CheckType, needsPayload | strict, (vies, model, required))
  };

  /// One card's checks, by its BIN and fingerprint.
  struct CardEligiblityDetail {
    /// The fields, read from the JSON keys of their names. `checkType`, `cardBin` and `cardFingerPrint` are required.
    /// `cardFingerPrint` is the user's own, masked in recordings.
    ///@{
    CheckType checkType{};
    std::string cardBin{};
    std::string cardFingerPrint{};
    ///@}

    WEBSDK_MODEL(CardEligiblityDetail, needsPayload | strict, (checkType, model, required),
                 (cardBin, strictString, required), (cardFingerPrint, strictString, required, sensitive))
  };

  /// Written under the JSON key of its name.
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

/// The provider's answer to a de-enrolment: whether the card left one-click.
struct WEBSDK_EXPORT WebSDKOneClickDeEnrollResponseModel {
  /// Read from the JSON key of its name; required.
  bool isDeEnrolled = false;

  WEBSDK_MODEL(WebSDKOneClickDeEnrollResponseModel, needsPayload | strict, (isDeEnrolled, strictBool, required))
};

/// The provider's answer to a card's deletion, with its error when it failed.
struct WEBSDK_EXPORT WebSDKOneClickDeleteResponseModel {
  /// The fields, read from the JSON keys of their names. `isDeleted`, `errorMessage` and `errorCode` are required.
  ///@{
  bool isDeleted = false;
  std::string errorMessage{};
  std::string errorCode{};
  ///@}

  WEBSDK_MODEL(WebSDKOneClickDeleteResponseModel, needsPayload | strict, (isDeleted, strictBool, required),
               (errorMessage, strictString, required), (errorCode, strictString, required))
};

}  // namespace websdk
