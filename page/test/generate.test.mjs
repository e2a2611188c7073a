import assert from "node:assert/strict";
import { spawnSync } from "node:child_process";
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { test } from "node:test";
import { fileURLToPath } from "node:url";

import { generate, generateHost, pageFunctionSignature, typeOf, withPageFunctions, writtenTypeOf } from "../scripts/generate-actions.mjs";

const fixture = fileURLToPath(new URL("host-catalogue.json", import.meta.url));
const bin = fileURLToPath(new URL("../bin/websdk-typings.mjs", import.meta.url));

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

test("an event's field has the type native code writes for its reading", () => {
  const rows = [
    [{ readings: ["lenientString"] }, "string"],
    [{ readings: ["strictString"] }, "string"],
    [{ readings: ["lenientBool"] }, "boolean"],
    [{ readings: ["lenientInt"] }, "number"],
    [{ readings: ["lenientDouble"] }, "number"],
    [{ readings: ["integer"] }, "number"],
    [{ readings: ["enumeration"], values: ["silver", "gold"] }, '"silver" | "gold"'],
    [{ readings: ["object"] }, "Record<string, unknown>"],
    [{ readings: ["array"] }, "unknown[]"],
    [{ readings: ["array"], elements: { readings: ["strictBool"] } }, "Array<boolean>"],
    [{ readings: ["raw"] }, "unknown"],
    [{ readings: [] }, "unknown"],
    [{ readings: ["object"], fields: [{ key: "a-b", readings: ["lenientInt"], required: true }, { key: "c", readings: ["strictString"] }] },
     '{\n  /** lenientInt; always present */\n  "a-b": number;\n  /** strictString */\n  c?: string;\n}'],
  ];
  for (const [place, type] of rows) assert.equal(writtenTypeOf(place, ""), type, JSON.stringify(place));
});

test("a host's typings augment @websdk/page with its actions and events", () => {
  const text = generateHost(JSON.parse(readFileSync(fixture, "utf8")), "host-catalogue.json");
  assert.match(text, /^\/\/ Generated by websdk-typings from host-catalogue.json: do not edit\.$/m);
  assert.match(text, /^declare module "@websdk\/page" \{$/m);
  assert.match(text, /^export \{\};\n$/m, "a module, so that the declaration augments rather than replaces");
  const body = (name) => text.match(new RegExp(`interface ${name} \\{\\n([\\s\\S]*?)\\n  \\}`))?.[1] ?? "";
  assert.match(body("WebSDKHostActionPayloads"), /"REDEEM_POINTS": \{\n {6}\/\*\* integer; required \*\/\n {6}points: number \| boolean;\n {6}\/\*\* strictString \*\/\n {6}note\?: string;\n {4}\};/);
  assert.match(body("WebSDKHostActionPayloads"), /"GET_LOYALTY_BALANCE": \{/);
  assert.doesNotMatch(text, /"TRANSFER_POINTS":/, "never accepted, so never a request");
  assert.equal(body("WebSDKHostRequiredPayloads").trim(), '"REDEEM_POINTS": true;');
  assert.match(body("WebSDKHostEvents"), /"loyaltyPointsChanged": \{\n {6}\/\*\* integer; always present \*\/\n {6}points: number;/);
  assert.match(body("WebSDKHostEvents"), /expiring\?: Array<\{\n {8}\/\*\* lenientInt \*\/\n {8}points\?: number;/);
  assert.match(body("WebSDKHostEvents"), /"loyalty\.reset": unknown;/);
});

test("a host catalogue may lack events and families; page functions and bad event names are not a host's", () => {
  const empty = generateHost({ families: [], pageFunctions: [{ function: "handleHardwareBack", arguments: [] }] }, "c.json");
  assert.doesNotMatch(empty, /handleHardwareBack/);
  assert.match(empty, /interface WebSDKHostEvents \{\n {2}\}/);
  assert.equal(generateHost({}, "c.json"), empty);
  for (const name of ["", "2fa", "has space", "x".repeat(129), undefined])
    assert.throws(() => generateHost({ events: [{ name, fields: [] }] }, "c.json"), /not a valid event name/, String(name));
});

test("websdk-typings writes the typings, checks them, and refuses bad usage", (t) => {
  const dir = mkdtempSync(join(tmpdir(), "websdk-typings-"));
  t.after(() => rmSync(dir, { recursive: true, force: true }));
  const out = join(dir, "host-actions.d.ts");
  const bad = join(dir, "bad.json");
  writeFileSync(bad, "{ not json");
  const run = (...args) => spawnSync(process.execPath, [bin, ...args], { encoding: "utf8" });
  const expected = generateHost(JSON.parse(readFileSync(fixture, "utf8")), "host-catalogue.json");
  const rows = [
    [["--catalogue", fixture, "--out", out, "--check"], 1, /differs/],
    [["--catalogue", fixture, "--out", out], 0, /wrote/],
    [["--catalogue", fixture, "--out", out, "--check"], 0, /^$/],
    [["--catalogue", fixture], 0, /^$/],
    [["--out", out], 2, /--catalogue is required/],
    [["--catalogue", fixture, "--check"], 2, /--check needs --out/],
    [["--catalogue", fixture, "--outfile", out], 2, /usage/],
    [["--catalogue", bad, "--out", out], 2, /bad\.json/],
  ];
  for (const [args, status, message] of rows) {
    const r = run(...args);
    assert.equal(r.status, status, `${args.join(" ")}: ${r.stderr}`);
    assert.match(r.status === 0 ? r.stdout.replace(expected, "") : r.stderr, message, args.join(" "));
  }
  assert.equal(readFileSync(out, "utf8"), expected);
  writeFileSync(out, expected + "// edited\n");
  assert.equal(run("--catalogue", fixture, "--out", out, "--check").status, 1);
});
