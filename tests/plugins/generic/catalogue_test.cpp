#include "support/Decoding.hpp"

// Expected models are written with designated initializers naming only the
// fields a row sets; the rest keep their defaults, which is the point.
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"

namespace websdk {
namespace {

using P = WebSDKGenericRequestPayload;
using enum WebSDKGenericRequestPayloadCase;

// One decodable request per action, in the order of the action table (plus a
// decline for the one action that never decodes).
const std::vector<test::DecodeRow>& oneRequestPerAction() {
  static const std::vector<test::DecodeRow> rows = {
      {"GET_LOCATION", std::nullopt, P::make<getLocation>({0})},
      {"SET_LOCATION", R"({"lat":1.5})", P::make<setLocation>({.lat = 1.5})},
      {"GET_DEVICE_DETAILS", "{}", std::nullopt},
      {"DIALOG_ALERT", R"({"message":"m"})", P::make<dialogAlert>({"m", "", "ok"})},
      {"DIALOG_CONFIRM", R"({"message":"m","title":"t"})", P::make<dialogConfirm>({"t", "m", std::nullopt})},
      {"GET_USER_INFO", R"({"x":1})", P::make<getUserInfo>()},
      {"CLOSE_WEBVIEW", std::nullopt, P::make<closeWebview>({})},
      {"NAVIGATE_TO_SCREEN", R"({"type":"screen","link":"cart"})",
       P::make<navigateToScreen>({.type = NavigationType::screen, .link = "cart"})},
      {"GET_DOVARA_HEADERS", std::nullopt, P::make<getDovaraHeaders>()},
      {"WEB_NAVIGATE", R"({"url":"https://a"})", P::make<webNavigate>({.url = "https://a"})},
      {"SHOW_HEADER", R"({"show":true})", P::make<showHeader>({.show = true})},
      {"STORAGE", R"({"type":"get","data":{}})", P::make<storage>({StorageMethodType::get, {}})},
      {"SET_APP_ACTIVE_IN_IDLE_STATE", R"({"active":true})", P::make<extendAppActiveInBackground>({true})},
      {"TOGGLE_NATIVE_BOTTOM_BAR", R"({"show":1})", P::make<toggleBottomBar>({true})},
      {"LOGIN", R"({"reloadUrl":"https://r"})", P::make<login>({"https://r"})},
      {"OPEN_ORBIS_V2", R"({"link":"l","lastMile":2.5})", P::make<openOrbisV2>({"l", 2.5})},
      {"OPEN_ORBIS_V3", R"({"link":"l"})", P::make<openOrbisV3>({"l"})},
      {"STATUS_BAR_CHANGE", R"({"style":"dark"})", P::make<statusBarChange>({"dark"})},
      {"VIBRATE", R"({"duration":200,"amplitude":"high"})", P::make<vibrate>({200, "high"})},
      {"WHATSAPP_SHARE", R"({"text":"t"})", P::make<whatsappShare>({"t", ""})},
      {"OPEN_SHARE_SHEET", R"({"text":"t"})", P::make<openShareSheet>({"t"})},
      {"COPY_TEXT_TO_CLIPBOARD", R"({"text":"t"})", P::make<copyTextToClipboard>({"t"})},
      {"DISABLE_NATIVE_SCROLL", R"({"disable":"yes"})", P::make<disableNativeScroll>({true})},
      {"ADD_NEW_ADDRESS", R"({"storeId":"s"})", P::make<addNewAddress>({.storeId = "s"})},
      {"SEND_CLEVERTAP_EVENT", R"({"eventName":"e"})", P::make<sendCleverTapEvent>({"e", std::nullopt})},
      {"ENABLE_BACK_SWIPE", R"({"isEnabled":true})", P::make<toggleBackSwipe>({true})},
      {"SHOW_LOADER", std::nullopt, P::make<showLoader>()},
      {"HIDE_LOADER", std::nullopt, P::make<hideLoader>()},
      {"EDIT_ADDRESS", "{}", P::make<editAddress>({})},
      {"GET_NEXT_STEP_DETAILS", R"({"currentStep":"s"})", P::make<getNextStepDetails>({"s"})},
      {"GET_CURRENT_ADDRESS", std::nullopt, P::make<getCurrentAddress>()},
      {"PHONE_CONTACT", R"({"func_name":"cb"})", P::make<phoneContact>({"cb"})},
      {"EDIT_DIRECTIONS_TO_REACH", "{}", P::make<editDirections>({})},
      {"IOS_CHECK_CAMERA_PERMISSION", std::nullopt, P::make<checkCameraPermission>()},
      {"SUBMIT_FEEDBACK", R"({"originScreen":"o","link":"l"})", P::make<submitFeedback>({"o", "l"})},
      {"OPEN_NATIVE_VOICE_SEARCH", R"({"screenName":"home"})", P::make<voiceSearch>({"home"})},
      {"GET_SELECTED_LOCATION", std::nullopt, P::make<getSelectedLocation>()},
      {"OPEN_LOCATION_SEARCH", std::nullopt, P::make<openSearchLocation>()},
      {"SET_LOCATION_WITH_DEEP_LINK", R"({"deepLink":{"type":"deeplink","link":"app://x"}})",
       P::make<setLocationWithDeeplink>({std::nullopt, DeeplinkModel{NavigationType::deeplink, "app://x"}})},
      {"SWITCH_BOTTOM_BAR_TAB", R"({"tabIdentifier":"home"})", P::make<switchBottomBarTab>({"home", JSONObject{}})},
      {"IS_LOCATION_ENABLED", std::nullopt, P::make<isLocationEnabled>()},
      {"GET_TNS_SIGNAL", std::nullopt, P::make<getTnsSignal>()},
      {"SCREEN_CAPTURING", R"({"screenCapturingDisabled":false})", P::make<screenCapturing>({false})},
      {"TOGGLE_NATIVE_SEARCH_BAR", R"({"canShow":"true"})", P::make<toggleNativeSearchBar>({true})},
      {"UPDATE_NATIVE_SEARCH_BAR", R"({"query":"pizza","action":"submit"})",
       P::make<updateNativeSearchBar>({"pizza", "submit"})},
      {"LAUNCH_BROWSER", R"({"url":"https://b"})", P::make<launchBrowser>({"https://b"})},
      {"GET_CONFIG_VALUE", R"({"xpKeyList":["a"]})",
       P::make<getConfigValue>({.xpKeyList = std::vector<std::string>{"a"}})},
      {"UPDATE_ORDER_EVENT", R"({"orderId":"o1"})", P::make<updateLiveActivity>({.orderId = "o1"})},
      {"UPDATE_ACCESS_TOKEN", std::nullopt, P::make<updateAccessToken>()},
      {"GET_NOTIFICATION_PERMISSION_STATUS", std::nullopt, P::make<getNotificationPermissionStatus>()},
      {"GET_SORTED_ADDRESSES", R"({"source_location":{"latitude":1,"longitude":2}})",
       P::make<getSortedAddresses>({Location{1, 2}})},
      {"QUIZ_PROGRESS_UPDATE", R"({"params":{"quizName":"q","totalQuestions":5,"attemptedQuestions":"2"}})",
       P::make<quizProgressUpdate>({.quizName = "q", .totalQuestions = 5, .attemptedQuestions = 2})},
      {"IS_WEB_BOTTOM_BAR_VISIBLE", R"({"visible":true})", P::make<isWebBottomBarVisible>({true})},
      {"TOGGLE_QUICKS_HEADER_TAB", R"({"show":false})", P::make<toggleQuicksHeaderTab>({false})},
      {"GET_LOCAL_IRCTC_PAYLOAD", std::nullopt, P::make<getLocalIRCTCPayload>()},
      {"GET_ASYNC_IRCTC_PAYLOAD", std::nullopt, P::make<getAsyncIRCTCPayload>()},
      {"UPDATE_LOCAL_IRCTC_PAYLOAD", R"({"irctc_data":{"coach":"S4"}})",
       P::make<updateLocalIRCTCPayload>(WebSDKIRCTCResponseModel{.coach = "S4"})},
      {"GET_INSTALLED_APPS", R"({"apps":["x"]})", P::make<getInstalledApps>({std::vector<std::string>{"x"}})},
      {"iOS_MEDIA_UPLOAD", "{}", P::make<mediaUpload>({})},
      {"TRACK_EVENT", R"({"eventName":"e"})", P::make<trackEvent>({"e", std::nullopt})},
      {"REFRESH_PARENT_SCREEN", std::nullopt, P::make<refreshParentScreen>()},
      {"SEND_FREQUENCY_CAPPING_EVENT", R"({"frequencyCappingInfo":{"entityId":"e"}})",
       P::make<sendFrequencyCappingEvent>({.entityId = "e"})},
      {"INIT_PX_WEB", std::nullopt, P::make<initPXWeb>()},
      {"INVITE_MORE_GROUPCART", R"({"groupCartId":"g"})", P::make<groupOrderInvite>({"g", std::nullopt})},
      {"DELETE_GROUPCART", R"({"groupCartId":"g"})", P::make<groupOrderDelete>({"g", std::nullopt})},
      {"LEAVE_GROUPCART", R"({"groupCartId":"g"})", P::make<groupOrderLeave>({"g", std::nullopt})},
      {"REFRESH_SCREEN", R"({"type":"screen","link":"menu"})",
       P::make<refreshScreen>({RefreshType::screen, RefreshScreenType::menu, std::nullopt})},
      {"SUBMIT_UPLOADED_FILES", R"({"s3Links":["u"],"input":{}})",
       P::make<submitUploadedFiles>({std::vector<std::string>{"u"}, {}})},
      {"GET_GPS_LOCATION", std::nullopt, P::make<getGPSLocation>()},
      {"GET_GPS_LOCATION_V2", R"({"accuracyLevel":2})", P::make<getGPSLocationV2>({.accuracyLevel = 2})},
      {"DOWNLOAD_FILE", R"({"url":"u"})", P::make<downloadFile>({.url = "u"})},
      {"WEBVIEW_OPEN_AND_SYNC_BRIDGE", R"({"source":"s","link":"l"})", P::make<openWebViewAndSyncData>({"s", "l"})},
      {"CLOSE_WEBVIEW_AND_SYNC_DATA", R"({"source":"s","closeOnly":true})",
       P::make<closeWebViewAndSyncData>({"s", true, std::nullopt})},
      {"GET_WEBVIEW_HALFCARD_HEIGHT", R"({"height":300})",
       P::make<getHalfCardHeight>(std::make_shared<const WebSDKGetHalfCardHeightRequestModel>("300"))},
  };
  return rows;
}

TEST(GenericCatalogue, EveryActionReachesItsCase) {
  auto reached = test::expectDecodes<GenericFamily>(oneRequestPerAction());
  reached.insert("GET_DEVICE_DETAILS");  // declined above, on purpose
  EXPECT_EQ(reached, test::everyAction<GenericFamily>());
}

TEST(GenericCatalogue, ActionStringsAreMatchedExactly) {
  EXPECT_EQ(fromRawValue<WebSDKGenericAction>("iOS_MEDIA_UPLOAD"), WebSDKGenericAction::mediaUpload);
  EXPECT_EQ(fromRawValue<WebSDKGenericAction>("IOS_MEDIA_UPLOAD"), std::nullopt);
}

TEST(GenericCatalogue, DeclinedRequests) {
  test::expectDecodes<GenericFamily>({
      // Never decodes, whatever the payload, unlike the other actions without data.
      {"GET_DEVICE_DETAILS", std::nullopt, std::nullopt},
      {"GET_DEVICE_DETAILS", R"({"memory":true})", std::nullopt},
      // Model rows fail with their model.
      {"DIALOG_ALERT", "{}", std::nullopt},
      {"NAVIGATE_TO_SCREEN", std::nullopt, std::nullopt},
      {"WEB_NAVIGATE", R"({"url":5})", std::nullopt},
      {"STORAGE", R"({"type":"get"})", std::nullopt},
      {"REFRESH_SCREEN", R"({"type":"screen","link":"home"})", std::nullopt},
      {"SWITCH_BOTTOM_BAR_TAB", R"({"tabIdentifier":2})", std::nullopt},
      {"SET_LOCATION", std::nullopt, std::nullopt},
      {"TRACK_EVENT", "{}", std::nullopt},
      // Not actions at all.
      {"get_location", std::nullopt, std::nullopt},
      {"update_order_event", std::nullopt, std::nullopt},
  });
}

TEST(GenericCatalogue, CasesWithoutDataIgnoreThePayload) {
  test::expectDecodes<GenericFamily>({
      {"GET_USER_INFO", R"("junk")", P::make<getUserInfo>()},
      {"GET_GPS_LOCATION", R"({"accuracyLevel":"x"})", P::make<getGPSLocation>()},
      {"INIT_PX_WEB", "[1,2]", P::make<initPXWeb>()},
  });
}

TEST(GenericCatalogue, InlineReadingsStrictAndLenient) {
  test::expectDecodes<GenericFamily>({
      // Lenient integer.
      {"GET_LOCATION", R"({"accuracyLevel":"3"})", P::make<getLocation>({3})},
      {"GET_LOCATION", R"({"accuracyLevel":2.9})", P::make<getLocation>({2})},
      {"GET_LOCATION", R"({"accuracyLevel":"high"})", P::make<getLocation>({0})},
      // Strict booleans count only JSON bools; lenient ones read strings and numbers.
      {"SET_APP_ACTIVE_IN_IDLE_STATE", R"({"active":"true"})", P::make<extendAppActiveInBackground>({false})},
      {"SET_APP_ACTIVE_IN_IDLE_STATE", R"({"active":1})", P::make<extendAppActiveInBackground>({false})},
      {"TOGGLE_NATIVE_BOTTOM_BAR", R"({"show":"true"})", P::make<toggleBottomBar>({true})},
      {"TOGGLE_NATIVE_BOTTOM_BAR", R"({"show":"Y"})", P::make<toggleBottomBar>({true})},
      {"TOGGLE_NATIVE_BOTTOM_BAR", R"({"show":"no"})", P::make<toggleBottomBar>({false})},
      {"IS_WEB_BOTTOM_BAR_VISIBLE", R"({"isVisible":true})", P::make<isWebBottomBarVisible>({false})},
      {"TOGGLE_QUICKS_HEADER_TAB", std::nullopt, P::make<toggleQuicksHeaderTab>({false})},
      // Strict strings give "" for other types; lenient ones give the text.
      {"OPEN_SHARE_SHEET", R"({"text":5})", P::make<openShareSheet>({""})},
      {"COPY_TEXT_TO_CLIPBOARD", R"({"text":true})", P::make<copyTextToClipboard>({""})},
      {"STATUS_BAR_CHANGE", std::nullopt, P::make<statusBarChange>({""})},
      {"GET_NEXT_STEP_DETAILS", R"({"currentStep":2})", P::make<getNextStepDetails>({""})},
      {"LAUNCH_BROWSER", R"({"url":5})", P::make<launchBrowser>({"5"})},
      {"PHONE_CONTACT", R"({"func_name":false})", P::make<phoneContact>({"false"})},
      {"GET_WEBVIEW_HALFCARD_HEIGHT", R"({"height":291.5})",
       P::make<getHalfCardHeight>(std::make_shared<const WebSDKGetHalfCardHeightRequestModel>("291.5"))},
      // An absent reload URL stays absent; a present one is read leniently.
      {"LOGIN", std::nullopt, P::make<login>({std::nullopt})},
      {"LOGIN", R"({"reloadUrl":7})", P::make<login>({"7"})},
      {"LOGIN", R"({"reloadUrl":null})", P::make<login>({""})},
  });
}

TEST(GenericCatalogue, InlineRulesThatFail) {
  test::expectDecodes<GenericFamily>({
      {"OPEN_ORBIS_V3", std::nullopt, std::nullopt},
      {"OPEN_ORBIS_V3", R"({"link":""})", std::nullopt},
      {"OPEN_ORBIS_V3", R"({"link":null})", std::nullopt},
      {"OPEN_ORBIS_V3", R"({"link":7})", P::make<openOrbisV3>({"7"})},
      {"SCREEN_CAPTURING", std::nullopt, std::nullopt},
      {"SCREEN_CAPTURING", "{}", std::nullopt},
      {"SCREEN_CAPTURING", R"({"screenCapturingDisabled":1})", std::nullopt},
      {"SCREEN_CAPTURING", R"({"screenCapturingDisabled":"true"})", std::nullopt},
      {"SCREEN_CAPTURING", R"({"screenCapturingDisabled":true})", P::make<screenCapturing>({true})},
  });
}

TEST(GenericCatalogue, OptionalAndNestedInlineModels) {
  test::expectDecodes<GenericFamily>({
      // Journey data that does not read gives the case without a model.
      {"UPDATE_LOCAL_IRCTC_PAYLOAD", std::nullopt, P::make<updateLocalIRCTCPayload>(std::nullopt)},
      {"UPDATE_LOCAL_IRCTC_PAYLOAD", R"({"irctc_data":"S4"})", P::make<updateLocalIRCTCPayload>(std::nullopt)},
      // A source point that is not an object is read as no point at all.
      {"GET_SORTED_ADDRESSES", R"({"source_location":[1,2]})",
       P::make<getSortedAddresses>({Location::from(std::nullopt)})},
      {"GET_SORTED_ADDRESSES", std::nullopt, P::make<getSortedAddresses>({Location::from(std::nullopt)})},
      {"CLOSE_WEBVIEW", R"({"params":null})", P::make<closeWebview>({std::nullopt})},
  });
}

TEST(GenericCatalogue, AnswersWithoutAGenericPlugin) {
  test::Harness bridge({"localhost"}, false, "https://localhost/");
  auto responses = bridge.post(test::requestText("GET_USER_INFO", std::nullopt));
  ASSERT_EQ(responses.size(), 1u);
  EXPECT_EQ(responses[0].at("statusMessage"), "generic plugin not subscribed or not a valid request");
  // A failed decoding never gets as far as the family's own message.
  responses = bridge.post(test::requestText("GET_DEVICE_DETAILS", std::nullopt));
  ASSERT_EQ(responses.size(), 2u);
  EXPECT_EQ(responses[1].at("statusMessage"), "not a valid request");
}

}  // namespace
}  // namespace websdk
