// A page that loads websdk-page.js with a <script> tag and types the global
// it defines: by reference (no import at run time) or by a bundler's import.
/// <reference types="@websdk/page/global" />
import "@websdk/page/global";

void WebSDKPage.request("APPLY_COUPON", { restaurantId: "12" }, { timeoutMs: 5000 });
void window.WebSDKPage.request("CLEAR_LOCAL_CART");
const stop: () => void = WebSDKPage.on("LOGIN_STATE_CHANGED", (loggedin) => loggedin === "true");
stop();
const client = WebSDKPage.createClient(window, { defaultTimeoutMs: 10000 });
client.dispose();
WebSDKPage.request("GET_USER_INFO").catch((e: unknown) => {
  if (e instanceof WebSDKPage.WebSDKRequestError && e.statusCode === WebSDKPage.CLIENT_STATUS_CODE) return e.requestId;
  throw e;
});

// @ts-expect-error "restaurantId" is read only as a string
void WebSDKPage.request("APPLY_COUPON", { restaurantId: 12 });
// @ts-expect-error not an action
void WebSDKPage.request("APPLY_COUPONS", {});

// The host's typings (written by check-package from test/host-catalogue.json) type the global too.
void WebSDKPage.request("REDEEM_POINTS", { points: 120 });
WebSDKPage.on("loyaltyPointsChanged", (data) => data.points > 0);
// @ts-expect-error "points" is required
void WebSDKPage.request("REDEEM_POINTS", {});
