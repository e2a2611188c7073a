#include "websdk/plugins/payments/CardModels.hpp"

#include <utility>

namespace websdk {
namespace {

// The members of one object, read as a keyed record decoder reads them. Any
// member that does not fit marks the whole record as failed; the caller
// checks valid() once at the end.
class StrictMembers {
 public:
  explicit StrictMembers(const JSON& value) : object_(value.if_object()), ok_(object_ != nullptr) {}

  bool valid() const { return ok_; }

  std::string string(std::string_view key) { return require(strictString(member(key))).value_or(""); }
  bool boolean(std::string_view key) { return require(strictBool(member(key))).value_or(false); }

  /// Missing or null is no value; anything but a string fails.
  std::optional<std::string> optionalString(std::string_view key) {
    const JSON* v = member(key);
    if (v == nullptr || v->is_null()) return std::nullopt;
    return require(strictString(v));
  }

  std::vector<std::string> strings(std::string_view key) {
    std::vector<std::string> out;
    const JSON* v = member(key);
    const auto* list = v ? v->if_array() : nullptr;
    if (list == nullptr) return fail(std::move(out));
    out.reserve(list->size());
    for (const auto& v : *list) {
      auto s = strictString(&v);
      if (!s) return fail(std::move(out));
      out.push_back(std::move(*s));
    }
    return out;
  }

  template <class T>
  T record(std::string_view key) {
    const JSON* v = member(key);
    return require(v ? T::decode(*v) : std::nullopt).value_or(T{});
  }

  template <class T>
  std::optional<T> result(T value) const {
    if (!ok_) return std::nullopt;
    return value;
  }

 private:
  const JSON* member(std::string_view key) const { return Fields(object_)[key]; }

  template <class V>
  std::optional<V> require(std::optional<V> v) {
    if (!v) ok_ = false;
    return v;
  }
  template <class V>
  V fail(V v) {
    ok_ = false;
    return v;
  }

  const JSONObject* object_;
  bool ok_;
};

/// A JSON array every element of which decodes as T.
template <class T>
std::optional<std::vector<T>> decodeList(const JSON* value) {
  const auto* list = value ? value->if_array() : nullptr;
  if (list == nullptr) return std::nullopt;
  std::vector<T> out;
  out.reserve(list->size());
  for (const auto& v : *list) {
    auto item = T::decode(v);
    if (!item) return std::nullopt;
    out.push_back(std::move(*item));
  }
  return out;
}

}  // namespace

// ---- Requests ----------------------------------------------------------------

std::optional<WebSDKGetOneClickCardEligibilityRequestModel::Card>
WebSDKGetOneClickCardEligibilityRequestModel::Card::decode(const JSON& value) {
  StrictMembers m(value);
  Card card;
  card.cardFingerPrint = m.string("cardFingerPrint");
  card.cardBin = m.string("cardBin");
  card.checkType = m.strings("checkType");
  return m.result(std::move(card));
}

std::optional<WebSDKGetOneClickCardEligibilityRequestModel> WebSDKGetOneClickCardEligibilityRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  auto cards = decodeList<Card>(p["cardDetails"]);
  if (!cards) return std::nullopt;
  return WebSDKGetOneClickCardEligibilityRequestModel{p.strictString("action").value_or(""),
                                                      p.strictString("amount").value_or(""), std::move(*cards)};
}

std::optional<CardDetail> CardDetail::decode(const JSON& value) {
  StrictMembers m(value);
  CardDetail detail;
  detail.cardBin = m.string("cardBin");
  detail.cardFingerPrint = m.string("cardFingerPrint");
  detail.maskedCardNumber = m.string("maskedCardNumber");
  return m.result(std::move(detail));
}

std::optional<WebSDKOneClickManageCardRequestModel> WebSDKOneClickManageCardRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  const auto action = p.enumeration<ManageCardAction>("action");
  if (!action) return std::nullopt;
  const JSON* detail = p["cardDetail"];
  auto cardDetail = detail ? CardDetail::decode(*detail) : std::nullopt;
  if (!cardDetail) return std::nullopt;
  return WebSDKOneClickManageCardRequestModel{*action, std::move(*cardDetail),
                                              p.strictString("juspayClientAuthToken").value_or("")};
}

// ---- Responses -----------------------------------------------------------------

using EligibilityResponse = WebSDKGetOneClickCardEligibilityResponseModel;

std::optional<EligibilityResponse::Vies> EligibilityResponse::Vies::decode(const JSON& value) {
  StrictMembers m(value);
  Vies vies;
  vies.eligibility = m.boolean("eligibility");
  vies.enrolled = m.boolean("enrolled");
  vies.responseMsg = m.optionalString("responseMsg");
  vies.expired = m.boolean("expired");
  return m.result(std::move(vies));
}

std::optional<EligibilityResponse::CheckType> EligibilityResponse::CheckType::decode(const JSON& value) {
  StrictMembers m(value);
  CheckType checkType{m.record<Vies>("vies")};
  return m.result(std::move(checkType));
}

std::optional<EligibilityResponse::CardEligiblityDetail> EligibilityResponse::CardEligiblityDetail::decode(
    const JSON& value) {
  StrictMembers m(value);
  CardEligiblityDetail detail;
  detail.checkType = m.record<CheckType>("checkType");
  detail.cardBin = m.string("cardBin");
  detail.cardFingerPrint = m.string("cardFingerPrint");
  return m.result(std::move(detail));
}

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
  auto details = decodeList<CardEligiblityDetail>(object->if_contains("cardEligiblityDetails"));
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

std::optional<WebSDKOneClickDeEnrollResponseModel> WebSDKOneClickDeEnrollResponseModel::decode(const JSON& value) {
  StrictMembers m(value);
  WebSDKOneClickDeEnrollResponseModel model{m.boolean("isDeEnrolled")};
  return m.result(std::move(model));
}

std::optional<WebSDKOneClickDeleteResponseModel> WebSDKOneClickDeleteResponseModel::decode(const JSON& value) {
  StrictMembers m(value);
  WebSDKOneClickDeleteResponseModel model;
  model.isDeleted = m.boolean("isDeleted");
  model.errorMessage = m.string("errorMessage");
  model.errorCode = m.string("errorCode");
  return m.result(std::move(model));
}

}  // namespace websdk
