import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { test } from "node:test";
import vm from "node:vm";

test("the classic-script build defines WebSDKPage on the page's window", async () => {
  const posted = [];
  const window = { webkit: { messageHandlers: { nativeRequest: { postMessage: (m) => posted.push(JSON.parse(m.message)) } } } };
  window.globalThis = window;
  const context = vm.createContext(window);
  vm.runInContext(readFileSync(new URL("../dist/websdk-page.js", import.meta.url), "utf8"), context);
  const asked = vm.runInContext('WebSDKPage.request("CLEAR_LOCAL_CART")', context);
  vm.runInContext(`nativeResponse({type: "SUCCESS", statusCode: 0, requestId: "${posted[0].requestId}", payload: "{\\"ok\\":true}"})`, context);
  assert.deepEqual({ ...(await asked) }, { ok: true });
  assert.equal(typeof window.handleHardwareBack, "function");
});

test("the copy the native build embeds is the current build", () => {
  const built = readFileSync(new URL("../dist/websdk-page.js", import.meta.url), "utf8");
  const embedded = readFileSync(new URL("../websdk-page.js", import.meta.url), "utf8");
  assert.equal(embedded, built, "page/websdk-page.js is stale: run `npm run bundle`");
});
