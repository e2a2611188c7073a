import assert from "node:assert/strict";
import { test } from "node:test";

import { generate, pageFunctionSignature, typeOf } from "../scripts/generate-actions.mjs";

test("each reading becomes the JSON it gives a value for", () => {
  const rows = [
    [{ readings: ["strictString"] }, "string"],
    [{ readings: ["lenientBool"] }, "boolean | number | string"],
    [{ readings: ["strictString", "number"] }, "string | number | boolean"],
    [{ readings: ["enumeration"], values: ["A", "B"] }, '"A" | "B"'],
    [{ readings: ["raw"] }, "unknown"],
    [{ readings: [] }, "unknown"],
    [{ readings: [], elements: { readings: ["lenientString"] } }, "Array<string | number | boolean>"],
    [{ readings: ["object"], fields: [{ key: "a-b", readings: ["strictBool"], required: true }] },
     '{\n  /** strictBool; required */\n  "a-b": boolean;\n}'],
  ];
  for (const [place, type] of rows) assert.equal(typeOf(place, ""), type);
});

test("page functions are named by their call text, arguments by their literals", () => {
  const rows = [
    [{ script: "if ('k' in window){ window.k(true,1.5); }", arguments: [{ name: "v", type: "bool" }, { name: "h", type: "double" }] },
     { name: "k", parameters: "v: boolean, h: number" }],
    [{ script: "LOGIN_STATE_CHANGED('true')", arguments: [{ name: "loggedin", type: "bool" }] },
     { name: "LOGIN_STATE_CHANGED", parameters: 'loggedin: "true" | "false"' }],
    [{ script: "SEARCH_QUERY_INPUT(query", arguments: [{ name: "query", type: "string" }] },
     { name: "SEARCH_QUERY_INPUT", parameters: "...args: unknown[]" }],
    [{ script: "window.pageResume && window.pageResume()", arguments: [] }, { name: "pageResume", parameters: "" }],
  ];
  for (const [fn, signature] of rows) assert.deepEqual(pageFunctionSignature(fn), signature);
});

test("refused actions stay out of the payloads; required payloads are listed", () => {
  const text = generate({
    families: [{ name: "cart", actions: [
      { action: "A", case: "a", payload: "required", fields: [{ key: "x", readings: ["strictString"], required: true }] },
      { action: "B", case: "b", payload: "optional", fields: [] },
      { action: "C", case: null, payload: "never", fields: [] },
    ] }],
    pageFunctions: [],
  });
  assert.match(text, /"A": \{\n {4}\/\*\* strictString; required \*\/\n {4}x: string;\n {2}\};/);
  assert.match(text, /"B": Record<string, unknown>;/);
  assert.doesNotMatch(text, /"C":/);
  assert.match(text, /export type WebSDKActionWithRequiredPayload =\n {2}\| "A";/);
  assert.match(text, /export type WebSDKRefusedAction = "C";/);
  assert.match(text, /cart: "A" \| "B";/);
});
