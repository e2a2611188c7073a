import assert from "node:assert/strict";
import { test } from "node:test";

import { CLIENT_STATUS_CODE, WebSDKRequestError, createClient } from "../dist/index.js";

// A window with the native message handler; posted requests are kept parsed.
function page(extra = {}) {
  const posted = [];
  const win = {
    webkit: { messageHandlers: { nativeRequest: { postMessage: (m) => posted.push(JSON.parse(m.message)) } } },
    ...extra,
  };
  const client = createClient(win);
  const answer = (envelope) => win.nativeResponse(envelope);
  return { win, client, posted, answer };
}

const rejection = (promise) =>
  promise.then(
    () => assert.fail("resolved"),
    (error) => error,
  );

test("a request posts its message and resolves with the parsed payload of its answer", async () => {
  const { client, posted, answer } = page();
  const asked = client.request("APPLY_COUPON", { restaurantId: "12" });
  assert.equal(posted.length, 1);
  assert.equal(posted[0].type, "APPLY_COUPON");
  assert.deepEqual(posted[0].payload, { restaurantId: "12" });
  answer({ type: "SUCCESS", statusCode: 0, requestId: posted[0].requestId, payload: '{\n  "discount" : 60\n}' });
  assert.deepEqual(await asked, { discount: 60 });
});

test("answers settle by request id, whatever their order, and ids are unique", async () => {
  const { client, posted, answer } = page();
  const asks = [client.request("GET_LOCAL_CART", { tenant: {} }), client.request("CLEAR_LOCAL_CART"), client.request("LOGOUT")];
  assert.equal(new Set(posted.map((m) => m.requestId)).size, 3);
  assert.equal("payload" in posted[1], false);
  answer({ type: "SUCCESS", statusCode: 0, requestId: posted[2].requestId, payload: "not json" });
  answer({ type: "SUCCESS", statusCode: 0, requestId: posted[0].requestId, payload: "[1]" });
  answer({ type: "SUCCESS", statusCode: 0, requestId: posted[1].requestId });
  assert.deepEqual(await Promise.all(asks), [[1], undefined, "not json"]);
  // Another page's client picks other ids.
  const other = page();
  other.client.request("CLEAR_LOCAL_CART");
  assert.notEqual(other.posted[0].requestId, posted[0].requestId);
});

test("failures and timeouts reject with statusCode, statusMessage and requestId", async (t) => {
  t.mock.timers.enable({ apis: ["setTimeout"] });
  const pageHandler = t.mock.fn();
  const { client, posted, answer } = page({ nativeResponse: pageHandler });
  const rows = [
    {
      name: "FAILED envelope",
      ask: () => client.request("GET_LOCAL_CART", { tenant: {} }),
      act: (id) => answer({ type: "FAILED", statusCode: 1004, statusMessage: "Cart Plugin not subscribed", requestId: id }),
      expect: { statusCode: 1004, statusMessage: "Cart Plugin not subscribed" },
    },
    {
      name: "failure without a code",
      ask: () => client.request("CLEAR_LOCAL_CART"),
      act: (id) => answer({ type: "FAILED", requestId: id }),
      expect: { statusCode: 1, statusMessage: undefined },
    },
    {
      name: "timeout",
      ask: () => client.request("CLEAR_LOCAL_CART", undefined, { timeoutMs: 50 }),
      act: () => t.mock.timers.tick(50),
      expect: { statusCode: CLIENT_STATUS_CODE, statusMessage: "no answer within 50 ms" },
    },
  ];
  for (const row of rows) {
    const asked = row.ask();
    const id = posted.at(-1).requestId;
    row.act(id);
    const error = await rejection(asked);
    assert.ok(error instanceof WebSDKRequestError, row.name);
    assert.deepEqual({ statusCode: error.statusCode, statusMessage: error.statusMessage }, row.expect, row.name);
    assert.equal(error.requestId, id, row.name);
  }
  // The timed-out request's late answer is ours: the page's handler never sees it.
  answer({ type: "SUCCESS", statusCode: 0, requestId: posted.at(-1).requestId });
  assert.equal(pageHandler.mock.callCount(), 0);
});

test("counts say what became of every answer: settled, late, or to an id already answered", async (t) => {
  t.mock.timers.enable({ apis: ["setTimeout"] });
  const pageHandler = t.mock.fn();
  const { client, posted, answer } = page({ nativeResponse: pageHandler });
  const quick = client.request("CLEAR_LOCAL_CART");
  const slow = rejection(client.request("LOGOUT", undefined, { timeoutMs: 50 }));
  client.request("CLEAR_LOCAL_CART");
  assert.deepEqual(client.counts(), { pending: 3, answered: 0, late: 0, unasked: 0 });
  const ok = (id) => answer({ type: "SUCCESS", statusCode: 0, requestId: id });
  ok(posted[0].requestId);
  await quick;
  t.mock.timers.tick(50);
  await slow;
  ok(posted[1].requestId);  // after its timeout
  ok(posted[0].requestId);  // a second answer
  ok(posted[1].requestId);  // and another, past the late one
  assert.deepEqual(client.counts(), { pending: 1, answered: 1, late: 1, unasked: 2 });
  assert.equal(pageHandler.mock.callCount(), 0, "answers to this client's ids never reach the page's own handler");
});

test("nativeResponse passes answers it did not ask for to the page's own handler", () => {
  const earlier = [];
  const { win, client, posted, answer } = page({ nativeResponse: (e) => earlier.push(e.requestId) });
  answer({ type: "SUCCESS", statusCode: 0, requestId: "page-1" });
  // A handler assigned after the client came replaces the earlier one.
  const later = [];
  win.nativeResponse = (e) => later.push(e.requestId);
  answer({ type: "SUCCESS", statusCode: 0, requestId: "page-2" });
  // A handler declared by a later script replaces the property itself; the next request takes it back.
  const declared = [];
  Object.defineProperty(win, "nativeResponse", { configurable: true, writable: true, value: (e) => declared.push(e.requestId) });
  const asked = client.request("CLEAR_LOCAL_CART");
  answer({ type: "SUCCESS", statusCode: 0, requestId: posted[0].requestId, payload: "1" });
  answer({ type: "SUCCESS", statusCode: 0, requestId: "page-3" });
  assert.deepEqual([earlier, later, declared], [["page-1"], ["page-2"], ["page-3"]]);
  return asked.then((v) => assert.equal(v, 1));
});

test("without the native bridge a request rejects at once", async () => {
  const client = createClient({});
  const error = await rejection(client.request("CLEAR_LOCAL_CART"));
  assert.equal(error.statusCode, CLIENT_STATUS_CODE);
  assert.match(error.statusMessage, /no native bridge/);
});

test("every page function native code calls is installed and reaches its handlers", () => {
  const calls = [];
  const { win, client } = page({ handleHardwareBack: () => void calls.push("page's own") });
  const names = [
    "keyboardStateChanged", "onScreenVisibility", "openDeeplink", "LOGIN_STATE_CHANGED", "allowNativeBottomBarExit",
    "SEARCH_QUERY_INPUT", "swipeBottomsheet", "HANDLE_PX_SEARCH_ACTIONS", "updateScratchCardsData",
    "globalJSBridgeHandler", "BUILD_PX_CART", "handleHardwareBack", "onHalfCardBackgroundTap",
    "UPDATE_SELECTED_ADDRESS", "pageResume",
  ];
  for (const name of names) {
    assert.equal(typeof win[name], "function", name);
    assert.equal(win[name](), undefined, name);  // nobody listening: nothing happens
    client.on(name, (...args) => void calls.push([name, ...args]));
  }
  calls.length = 0;
  win.keyboardStateChanged(true, 300);
  win.LOGIN_STATE_CHANGED("false");
  win.handleHardwareBack();
  assert.deepEqual(calls, [["keyboardStateChanged", true, 300], ["LOGIN_STATE_CHANGED", "false"], "page's own", ["handleHardwareBack"]]);
  assert.throws(() => client.on("notAPageFunction", () => {}), TypeError);
});

test("a page function returns the first answer, survives a failing handler, and unsubscribes", async (t) => {
  t.mock.timers.enable({ apis: ["setTimeout"] });
  const { win, client } = page();
  const stop = client.on("handleHardwareBack", () => {
    throw new Error("boom");
  });
  client.on("handleHardwareBack", () => undefined);
  client.on("handleHardwareBack", () => true);
  client.on("handleHardwareBack", () => false);
  assert.equal(win.handleHardwareBack(), true);
  assert.throws(() => t.mock.timers.tick(0), /boom/);  // reported, after the others ran
  stop();
  assert.equal(win.handleHardwareBack(), true);
});

test("one client per window; dispose gives the page its functions back and rejects what waits", async () => {
  const own = () => "own";
  const { win, client } = page({ pageResume: own });
  assert.equal(createClient(win), client);
  const asked = client.request("CLEAR_LOCAL_CART");
  client.dispose();
  assert.equal((await rejection(asked)).statusCode, CLIENT_STATUS_CODE);
  assert.equal(win.pageResume, own);
  assert.notEqual(createClient(win), client);
});
