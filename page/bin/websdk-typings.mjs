#!/usr/bin/env node
// Writes a host app's typings for @websdk/page from the host's catalogue: its
// own families' actions (for request) and its events (for on), as a .d.ts that
// augments "@websdk/page". Put the file where the page's tsconfig.json
// includes it.
//
//   websdk-typings --catalogue host-catalogue.json --out host-actions.d.ts
//   websdk-typings --catalogue host-catalogue.json --out host-actions.d.ts --check
//
// Without --out the typings go to standard output. --check writes nothing and
// fails (exit 1) while --out's file differs, for a host's CI.

import { existsSync, mkdirSync, readFileSync, writeFileSync } from "node:fs";
import { basename, dirname } from "node:path";
import { parseArgs } from "node:util";

import { generateHost } from "../scripts/generate-actions.mjs";

const usage = "usage: websdk-typings --catalogue FILE [--out FILE] [--check]";

function fail(message, code) {
  console.error(`websdk-typings: ${message}`);
  process.exit(code);
}

let values;
try {
  ({ values } = parseArgs({
    options: {
      catalogue: { type: "string" },
      out: { type: "string" },
      check: { type: "boolean", default: false },
      help: { type: "boolean", short: "h", default: false },
    },
  }));
} catch (error) {
  fail(`${error.message}\n${usage}`, 2);
}
if (values.help) {
  console.log(usage);
  process.exit(0);
}
if (!values.catalogue) fail(`--catalogue is required\n${usage}`, 2);
if (values.check && !values.out) fail(`--check needs --out\n${usage}`, 2);

let text;
try {
  const catalogue = JSON.parse(readFileSync(values.catalogue, "utf8"));
  text = generateHost(catalogue, basename(values.catalogue));
} catch (error) {
  fail(`${values.catalogue}: ${error.message}`, 2);
}

if (!values.out) process.stdout.write(text);
else if (values.check) {
  if (!existsSync(values.out) || readFileSync(values.out, "utf8") !== text)
    fail(`${values.out} differs from ${values.catalogue}; run websdk-typings without --check`, 1);
} else if (!existsSync(values.out) || readFileSync(values.out, "utf8") !== text) {
  mkdirSync(dirname(values.out), { recursive: true });  // a build's output folder may not be there yet
  writeFileSync(values.out, text);
  console.log(`websdk-typings: wrote ${values.out}`);
}
