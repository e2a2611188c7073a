import assert from "node:assert/strict";
import { test } from "node:test";

import { generate, pageFunctionSignature, typeOf, withPageFunctions } from "../scripts/generate-actions.mjs";

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

test("page functions take the parameters their arguments are written as", () => {
  const rows = [
    [{ function: "k", arguments: [{ name: "v", written: "boolean" }, { name: "h", written: "number" }] },
     { name: "k", parameters: "v: boolean, h: number" }],
    [{ function: "LOGIN_STATE_CHANGED", arguments: [{ name: "loggedin", written: "quotedBool" }] },
     { name: "LOGIN_STATE_CHANGED", parameters: 'loggedin: "true" | "false"' }],
    [{ function: "SEARCH_QUERY_INPUT", arguments: [{ name: "query", written: "tail" }] },
     { name: "SEARCH_QUERY_INPUT", parameters: "...args: unknown[]" }],
    [{ function: "pageResume", arguments: [] }, { name: "pageResume", parameters: "" }],
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

test("the client's page function list is rewritten from the native table, and only it", () => {
  const source = [
    "const before = 1;",
    "const PAGE_FUNCTIONS = [",
    '  "old",',
    "] as const satisfies readonly WebSDKPageFunctionName[];",
    "const after = [2];",
  ].join("\n");
  const catalogue = { pageFunctions: [{ function: "keyboardStateChanged" }, { function: "BUILD_PX_CART" }] };
  assert.equal(
    withPageFunctions(source, catalogue),
    [
      "const before = 1;",
      "const PAGE_FUNCTIONS = [",
      '  "keyboardStateChanged",',
      '  "BUILD_PX_CART",',
      "] as const satisfies readonly WebSDKPageFunctionName[];",
      "const after = [2];",
    ].join("\n"),
  );
  assert.throws(() => withPageFunctions("const other = [];", catalogue), /no PAGE_FUNCTIONS list/);
});
