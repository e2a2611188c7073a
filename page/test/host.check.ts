// Compiled by `npm test`, never run, with the typings websdk-typings writes
// from test/host-catalogue.json: a host's own actions and events are typed
// like the built-in ones, and the built-in ones stay as they were. Compiled
// against src/ (test/tsconfig.host.json) and against the packed tarball in a
// consumer project (scripts/check-package.mjs).
import { createClient, on, request, type WebSDKHostEvents } from "@websdk/page";

const client = createClient({});
void request("REDEEM_POINTS", { points: 120, note: "birthday" });
void client.request("REDEEM_POINTS", { points: 120 }, { timeoutMs: 5000 });
void request("GET_LOYALTY_BALANCE");
void request("GET_LOYALTY_BALANCE", { currency: "cash" });
void request("APPLY_COUPON", { restaurantId: "12" });
on("loyaltyPointsChanged", (data) => data.points + (data.expiring?.[0]?.points ?? 0));
on("loyaltyPointsChanged", (data) => data.tier === "gold");
const stop: () => void = client.on("loyalty.reset", (data: unknown) => data);
stop();
on("LOGIN_STATE_CHANGED", (loggedin) => loggedin === "true");
const points: number = ({} as WebSDKHostEvents["loyaltyPointsChanged"]).points;
void points;

// @ts-expect-error not a key the reader reads
void request("REDEEM_POINTS", { points: 120, pts: 1 });
// @ts-expect-error "points" is required
void request("REDEEM_POINTS", { note: "birthday" });
// @ts-expect-error a payload is required
void request("REDEEM_POINTS");
// @ts-expect-error "note" is read only as a string
void request("REDEEM_POINTS", { points: 1, note: 5 });
// @ts-expect-error not one of the enumeration's values
void request("GET_LOYALTY_BALANCE", { currency: "gold" });
// @ts-expect-error never accepted natively
void request("TRANSFER_POINTS");
// @ts-expect-error not an event the host pushes
on("loyaltyPointsChange", (data: unknown) => data);
// @ts-expect-error the data has no such field
on("loyaltyPointsChanged", (data) => data.balance);
// @ts-expect-error "points" is a number, written by the host
on("loyaltyPointsChanged", (data) => data.points.toUpperCase());
// @ts-expect-error a page function's handler takes the page function's arguments
on("LOGIN_STATE_CHANGED", (loggedin: number) => loggedin);
// @ts-expect-error the built-in actions keep their payloads
void request("APPLY_COUPON", { restaurantId: 12 });
