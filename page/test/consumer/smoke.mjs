// The installed package loads through its exports map: the module, and the
// classic script, which defines the same functions on globalThis.
import assert from "node:assert/strict";

const page = await import("@websdk/page");
await import("@websdk/page/global");
assert.deepEqual(Object.keys(globalThis.WebSDKPage).sort(), Object.keys(page).sort());
for (const name of ["request", "on", "createClient"]) assert.equal(typeof page[name], "function", name);
