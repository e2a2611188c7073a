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

test("on() takes page function names and event names, and refuses anything else", () => {
  const rows = [
    ["handleHardwareBack", "page function"],
    ["LOGIN_STATE_CHANGED", "page function"],
    ["loyaltyPointsChanged", "event"],
    ["a", "event"],
    ["order.status:changed-2_x", "event"],
    ["x".repeat(128), "event"],
    ["x".repeat(129), "refused"],
    ["", "refused"],
    ["2fa", "refused"],
    ["_private", "refused"],
    ["has space", "refused"],
    ["a/b", "refused"],
    ["caf\u00e9", "refused"],
    [42, "refused"],
  ];
  for (const [name, kind] of rows) {
    const { win, client } = page();
    const heard = [];
    if (kind === "refused") {
      assert.throws(() => client.on(name, () => {}), { name: "TypeError", message: /not a page function, and not a valid event name/ }, String(name));
      continue;
    }
    client.on(name, (...args) => void heard.push(args));
    win.nativeEvent(name, { n: 1 });
    if (kind === "page function") win[name]("x");
    assert.deepEqual(heard, kind === "event" ? [[{ n: 1 }]] : [["x"]], `${name}: ${kind}`);
  }
});

test("nativeEvent reaches the handlers of the event's name and the page's own nativeEvent", () => {
  const own = [];
  const { win, client } = page({ nativeEvent: (name, data) => void own.push([name, data]) });
  const heard = [];
  client.on("pointsChanged", (data) => void heard.push(["first", data]));
  const stop = client.on("pointsChanged", (data) => void heard.push(["second", data]));
  client.on("reset", (data) => void heard.push(["reset", data]));
  client.on("handleHardwareBack", () => void heard.push("page function"));
  win.nativeEvent("pointsChanged", { points: 5 });
  win.nativeEvent("unheard", null);
  win.nativeEvent("handleHardwareBack", null);  // an event by that name is not the page function
  stop();
  win.nativeEvent("pointsChanged", { points: 6 });
  assert.deepEqual(heard, [["first", { points: 5 }], ["second", { points: 5 }], ["first", { points: 6 }]]);
  assert.deepEqual(own.map(([name]) => name), ["pointsChanged", "unheard", "handleHardwareBack", "pointsChanged"]);
  assert.deepEqual(own[0][1], { points: 5 });

  // Assigned later, the page's own replaces the earlier one; declared by a later
  // script, it is taken back at the next on() of an event.
  const later = [];
  win.nativeEvent = (name) => void later.push(name);
  win.nativeEvent("reset", null);
  const declared = [];
  Object.defineProperty(win, "nativeEvent", { configurable: true, writable: true, value: (name) => void declared.push(name) });
  client.on("other", () => {});
  win.nativeEvent("reset", 7);
  assert.deepEqual([later, declared], [["reset"], ["reset"]]);
  assert.deepEqual(heard.slice(3), [["reset", null], ["reset", 7]]);
});

test("an event handler that throws is reported without silencing the others", (t) => {
  t.mock.timers.enable({ apis: ["setTimeout"] });
  const heard = [];
  const { win, client } = page({
    nativeEvent: () => {
      throw new Error("own");
    },
  });
  client.on("pointsChanged", () => {
    throw new Error("boom");
  });
  client.on("pointsChanged", (data) => void heard.push(data));
  win.nativeEvent("pointsChanged", { points: 1 });
  assert.deepEqual(heard, [{ points: 1 }]);
  assert.throws(() => t.mock.timers.tick(0), /own/);  // reported later, the first first
});

test("dispose gives the page its own nativeEvent back, or none", () => {
  const own = () => "own";
  const rows = [
    [{ nativeEvent: own }, undefined, own],
    [{}, undefined, undefined],
    [{}, own, own],  // assigned while the client was installed
  ];
  for (const [extra, assigned, expected] of rows) {
    const { win, client } = page(extra);
    client.on("pointsChanged", () => {});
    if (assigned) win.nativeEvent = assigned;
    client.dispose();
    assert.equal(win.nativeEvent, expected);
  }
});
