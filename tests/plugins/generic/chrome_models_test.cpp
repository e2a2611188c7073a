#include "websdk/plugins/generic/ChromeModels.hpp"

// Expected models are written with designated initializers naming only the
// fields a row sets; the rest keep their defaults, which is the point.
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"

#include "support/Decoding.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace websdk {
namespace {

using test::expectReads;
using test::payloadOf;
template <class T>
using Row = test::ReaderRow<T>;

const ButtonMeta okButton{"ok-id", "OK", ButtonType::primary};

TEST(ChromeModels, AlertNeedsAStringMessage) {
  using M = WebSDKDialogAlertRequestModel;
  expectReads<M>({
      {"null", std::nullopt},
      {"{}", std::nullopt},
      {R"({"message":5})", std::nullopt},
      {R"({"message":"m"})", M{"m", "", "ok"}},
      {R"({"message":"m","title":5,"buttonName":null})", M{"m", "", "ok"}},
      {R"({"message":"m","title":"t","buttonName":"Close"})", M{"m", "t", "Close"}},
  });
}

TEST(ChromeModels, ConfirmKeepsOnlyWellFormedButtons) {
  using M = WebSDKDialogConfirmRequestModel;
  expectReads<M>({
      {R"({"title":"t"})", std::nullopt},
      {R"({"message":"m"})", M{"", "m", std::nullopt}},
      {R"({"message":"m","buttonLabels":{"id":"x"}})", M{"", "m", std::nullopt}},
      {R"({"message":"m","buttonLabels":[]})", M{"", "m", std::vector<ButtonMeta>{}}},
      {R"({"message":"m","buttonLabels":[)"
       R"({"id":"ok-id","text":"OK","type":"primary"},)"
       R"({"id":"x","text":"Maybe","type":"tertiary"},)"
       R"({"id":"y","type":"secondary"},)"
       R"("Cancel",)"
       R"({"text":"Later","type":"secondary"}]})",
       M{"", "m", std::vector<ButtonMeta>{okButton, {"", "Later", ButtonType::secondary}}}},
  });
}

TEST(ChromeModels, HeaderReadsWhatItCanAndNeverFails) {
  using M = WebSDKShowHeaderModel;
  using T = WebSDKShowHeaderTrailingDataModel;
  expectReads<M>({
      {"null", M{}},
      {R"({"show":"yes","title":7,"backURL":"b"})", M{.show = true, .backURL = "b"}},
      {R"({"titleAlignment":"LEFT"})", M{.titleAlignment = Alignment::left}},
      {R"({"titleAlignment":"left"})", M{}},
      {R"({"backAlert":null})", M{}},
      {R"({"backAlert":{"title":"no message"}})", M{}},
      {R"({"backAlert":{"message":"Leave?"}})", M{.backAlert = WebSDKDialogConfirmRequestModel{"", "Leave?", {}}}},
      {R"({"trailingAlert":{"iconToken":"info","buttonLabels":[{"id":"ok-id","text":"OK","type":"primary"}]}})",
       M{.trailingAlert = T{.iconToken = "info", .buttons = std::vector<ButtonMeta>{okButton}}}},
      {R"({"trailingAlert":"info"})", M{}},
  });
}

TEST(ChromeModels, StorageNeedsAKnownMethodAndAnObject) {
  using M = WebSDKWebStorageRequestModel;
  expectReads<M>({
      {"null", std::nullopt},
      {R"({"type":"get","data":{}})", M{StorageMethodType::get, {}}},
      {R"({"type":"delete","data":{"k":"v"}})", M{StorageMethodType::delete_, JSONObject{{"k", "v"}}}},
      {R"({"type":"DELETE","data":{}})", std::nullopt},
      {R"({"type":"save","data":[]})", std::nullopt},
      {R"({"type":"clean"})", std::nullopt},
  });
}

TEST(ChromeModels, NumbersAndTextsOfTheSmallRequests) {
  expectReads<WebSDKVibrateRequestModel>({
      {"null", WebSDKVibrateRequestModel{0, ""}},
      {R"({"duration":250.7,"amplitude":"low"})", WebSDKVibrateRequestModel{250, "low"}},
      {R"({"duration":"250","amplitude":3})", WebSDKVibrateRequestModel{0, ""}},
  });
  expectReads<WebSDKUpdateNativeSearchBarRequestModel>({
      {"null", WebSDKUpdateNativeSearchBarRequestModel{"", ""}},
      {R"({"query":5,"action":true})", WebSDKUpdateNativeSearchBarRequestModel{"5", "true"}},
  });
  expectReads<WebSDKWhatsappShareRequestModel>({
      {"null", WebSDKWhatsappShareRequestModel{"", ""}},
      {R"({"text":5,"fallback":"https://wa"})", WebSDKWhatsappShareRequestModel{"", "https://wa"}},
  });
}

}  // namespace
}  // namespace websdk
