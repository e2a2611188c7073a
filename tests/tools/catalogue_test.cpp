#include "../../tools/inspect/Catalogue.hpp"

#include "websdk/bridge/Families.hpp"
#include "websdk/json/Readings.hpp"
#include "websdk/webview/WebSDKJSFunctionType.hpp"

#include <gtest/gtest.h>

namespace websdk::inspect {
namespace {

std::string_view text(const JSON& v) {
  const auto* s = v.if_string();
  return s ? std::string_view(*s) : std::string_view("<not text>");
}

const JSON& theCatalogue() {
  static const JSON c = catalogue();
  return c;
}

const JSONObject* findIn(const JSON& list, std::string_view key, std::string_view value) {
  for (const JSON& entry : list.get_array())
    if (text(entry.get_object().at(key)) == value) return &entry.get_object();
  return nullptr;
}

const JSONObject& action(std::string_view name) {
  for (const JSON& family : theCatalogue().at("families").get_array())
    if (const auto* a = findIn(family.at("actions"), "action", name)) return *a;
  ADD_FAILURE() << "no action " << name;
  static const JSONObject none;
  return none;
}

// "key!:reading|reading" per field, nested fields indented by path.
std::vector<std::string> summary(const JSON& fields, const std::string& prefix = "") {
  std::vector<std::string> out;
  for (const JSON& f : fields.get_array()) {
    const auto& o = f.get_object();
    std::string line = prefix + std::string(o.at("key").get_string()) + (o.at("required").get_bool() ? "!" : "") + ":";
    for (const JSON& r : o.at("readings").get_array()) line += std::string(r.get_string()) + " ";
    out.push_back(line);
    const std::string inner = prefix + std::string(o.at("key").get_string());
    if (const JSON* nested = o.if_contains("fields")) {
      auto more = summary(*nested, inner + ".");
      out.insert(out.end(), more.begin(), more.end());
    }
    if (const JSON* elements = o.if_contains("elements"))
      if (const JSON* nested = elements->get_object().if_contains("fields")) {
        auto more = summary(*nested, inner + "[].");
        out.insert(out.end(), more.begin(), more.end());
      }
  }
  return out;
}

TEST(Catalogue, ListsEveryActionOfEveryFamilyOnceInTheBridgeOrder) {
  const auto& families = theCatalogue().at("families").get_array();
  std::size_t i = 0;
  forEachFamily([&]<class F>(F) {
    ASSERT_LT(i, families.size());
    const auto& family = families[i++].get_object();
    EXPECT_EQ(text(family.at("name")), F::name);
    const auto& actions = family.at("actions").get_array();
    ASSERT_EQ(actions.size(), caseCount<typename F::Action>());
    for (std::size_t a = 0; a < actions.size(); ++a)
      EXPECT_EQ(text(actions[a].at("action")), rawValue(allCases<typename F::Action>()[a]));
  });
  EXPECT_EQ(i, families.size());
  EXPECT_EQ(theCatalogue().at("pageFunctions").get_array().size(), caseCount<WebSDKJSFunctionTypeCase>());
}

TEST(Catalogue, SaysWhatEachDeclarationReadsAndRequires) {
  struct Row {
    std::string_view action, caseName, payload;
    std::vector<std::string> fields;
  };
  const std::vector<Row> rows = {
      // Plain keys; a required one is the one without which decoding fails.
      {"APPLY_COUPON",
       "applyCoupon",
       "required",
       {"restaurantId!:strictString ", "tenant:object ", "cart_total_shown_to_coupon:number ",
        "couponListingVersion:strictString "}},
      // Keys of a nested view.
      {"GET_LOCAL_CART",
       "getCart",
       "required",
       {"tenant!:object ", "tenant.marketplaceId:lenientString ", "tenant.marketplaceCategory:lenientString ",
        "tenant.marketplaceBusinessLine:lenientString "}},
      // A list of strict records, one of whose members is a list of strings.
      {"GET_ONE_CLICK_CARD_ELIGIBILITY",
       "getOneClickCardEligibility",
       "required",
       {"cardDetails!:array ", "cardDetails[].cardFingerPrint!:strictString ", "cardDetails[].cardBin!:strictString ",
        "cardDetails[].checkType!:array ", "action:strictString ", "amount:strictString "}},
      // A list whose elements that do not decode are dropped.
      {"DIALOG_CONFIRM",
       "dialogConfirm",
       "required",
       {"message!:strictString ", "title:strictString ", "buttonLabels:array ", "buttonLabels[].text:strictString ",
        "buttonLabels[].type:enumeration ", "buttonLabels[].id:strictString "}},
      // A key read only for some cases of an enumeration still counts.
      {"NAVIGATE_TO_SCREEN", "navigateToScreen", "required", {}},
      // No payload needed, nothing read.
      {"CLEAR_LOCAL_CART", "clearCart", "optional", {}},
      // Never accepted at all.
      {"GET_DEVICE_DETAILS", "", "never", {}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.action);
    const auto& a = action(row.action);
    EXPECT_EQ(text(a.at("payload")), row.payload);
    if (row.caseName.empty()) {
      EXPECT_TRUE(a.at("case").is_null());
    } else {
      EXPECT_EQ(text(a.at("case")), row.caseName);
    }
    if (!row.fields.empty()) {
      EXPECT_EQ(summary(a.at("fields")), row.fields);
    }
  }
  const auto navigate = summary(action("NAVIGATE_TO_SCREEN").at("fields"));
  EXPECT_NE(std::find(navigate.begin(), navigate.end(), "type!:enumeration "), navigate.end());
  EXPECT_NE(std::find(navigate.begin(), navigate.end(), "params.tenant:enumeration "), navigate.end());
  EXPECT_EQ(findIn(action("NAVIGATE_TO_SCREEN").at("fields"), "key", "type")->at("values"),
            (JSONArray{"screen", "deeplink"}));
}

TEST(Catalogue, PageFunctionsCarryTheirCallTextWithTellingArguments) {
  const auto* keyboard = findIn(theCatalogue().at("pageFunctions"), "case", "keyboardStateChanged");
  ASSERT_NE(keyboard, nullptr);
  EXPECT_EQ(text(keyboard->at("script")),
            "if ('keyboardStateChanged' in window){ window.keyboardStateChanged(true,1.5); }");
  EXPECT_EQ(text(keyboard->at("function")), "keyboardStateChanged");
  EXPECT_EQ(keyboard->at("arguments"), parseJSON(R"([{"name":"visible","type":"bool","written":"boolean"},
                                                     {"name":"height","type":"double","written":"number"}])"));
  const auto* back = findIn(theCatalogue().at("pageFunctions"), "case", "handleSwipeGesture");
  ASSERT_NE(back, nullptr);
  EXPECT_EQ(text(back->at("script")), "handleHardwareBack()");
}

}  // namespace
}  // namespace websdk::inspect
