// Compiled by `npm test`, never run: the typings accept what the native
// readers read and refuse the rest. Compiled twice: against src/ (through
// test/tsconfig.json's paths) and, by scripts/check-package.mjs, against the
// packed tarball installed in a consumer project.
import { createClient, on, request } from "@websdk/page";

const client = createClient({});
void request("APPLY_COUPON", { restaurantId: "12", cart_total_shown_to_coupon: 299 });
void request("CLEAR_LOCAL_CART");
void client.request("NAVIGATE_TO_SCREEN", { type: "deeplink", link: "app://orders" }, { timeoutMs: 5000 });
on("keyboardStateChanged", (visible: boolean, height: number) => visible && height > 0);
on("LOGIN_STATE_CHANGED", (loggedin) => loggedin === "true");

// @ts-expect-error "restaurantId" is required
void request("APPLY_COUPON", { cart_total_shown_to_coupon: 299 });
// @ts-expect-error a payload is required
void request("GET_LOCAL_CART");
// @ts-expect-error "restaurantId" is read only as a string
void request("APPLY_COUPON", { restaurantId: 12 });
// @ts-expect-error not a key the reader reads
void request("LOGOUT", { tid: "1", sessionId: "2" });
// @ts-expect-error not one of the enumeration's values
void request("NAVIGATE_TO_SCREEN", { type: "somewhere", link: "x" });
// @ts-expect-error not an action
void request("GET_LOCAL_CARTS", {});
// @ts-expect-error never accepted natively
void request("GET_DEVICE_DETAILS");
// @ts-expect-error not a page function
on("keyboardStateChange", () => undefined);
