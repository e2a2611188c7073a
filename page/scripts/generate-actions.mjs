// Writes src/actions.d.ts and the page function list in src/index.ts from the
// native catalogue (`websdk-inspect --catalogue`), so the typings say what the
// native readers read and the client installs every page function native
// code calls.
//
//   node scripts/generate-actions.mjs            regenerate
//   node scripts/generate-actions.mjs --check    fail when either differs
//   --catalogue FILE                             read a saved catalogue instead
//
// websdk-inspect is found through $WEBSDK_INSPECT, else ../build/websdk-inspect.
//
// The same code writes a host app's typings (generateHost) for bin/websdk-typings.mjs,
// which is why this file ships in the package.

import { execFileSync } from "node:child_process";
import { existsSync, readFileSync, writeFileSync } from "node:fs";
import { dirname, resolve } from "node:path";
import { fileURLToPath } from "node:url";

const here = dirname(fileURLToPath(import.meta.url));
const target = resolve(here, "../src/actions.d.ts");
const client = resolve(here, "../src/index.ts");
const pageFunctionList = /^const PAGE_FUNCTIONS = \[\n[^\]]*\] as const satisfies readonly WebSDKPageFunctionName\[\];$/m;

// What JSON each reading turns into a value (anything else reads as absent or
// a default).
const readingTypes = {
  lenientString: ["string", "number", "boolean"],
  strictString: ["string"],
  lenientBool: ["boolean", "number", "string"],
  strictBool: ["boolean"],
  lenientInt: ["number", "string", "boolean"],
  lenientDouble: ["number", "string", "boolean"],
  number: ["number", "boolean"],
  integer: ["number", "boolean"],
  object: ["Record<string, unknown>"],
  array: ["unknown[]"],
  stringMap: ["Record<string, string | number | boolean>"],
  raw: ["unknown"],
};

const identifier = /^[A-Za-z_$][\w$]*$/;
const quote = (s) => JSON.stringify(s);
const property = (key) => (identifier.test(key) ? key : quote(key));

export function typeOf(place, indent) {
  if (place.fields && place.fields.length > 0) return objectType(place.fields, indent);
  if (place.elements) return `Array<${typeOf(place.elements, indent)}>`;
  const parts = [];
  for (const reading of place.readings) {
    if (reading === "enumeration") parts.push(...place.values.map(quote));
    else if (readingTypes[reading]) parts.push(...readingTypes[reading]);
    else throw new Error(`unknown reading ${reading}`);
  }
  if (parts.length === 0 || parts.includes("unknown")) return "unknown";
  return [...new Set(parts)].join(" | ");
}

export function objectType(fields, indent) {
  const inner = indent + "  ";
  const lines = fields.map((f) => {
    const readings = f.readings.length ? f.readings.join(", ") : "looked up";
    return `${inner}/** ${readings}${f.required ? "; required" : ""} */\n` +
      `${inner}${property(f.key)}${f.required ? "" : "?"}: ${typeOf(f, inner)};`;
  });
  return `{\n${lines.join("\n")}\n${indent}}`;
}

// What JSON native code writes for each reading of an event's field: an
// event's data is written by the host, so a field has the one type its
// reading reads, not every type a lenient reading would accept.
const writtenReadingTypes = {
  lenientString: "string",
  strictString: "string",
  lenientBool: "boolean",
  strictBool: "boolean",
  lenientInt: "number",
  lenientDouble: "number",
  number: "number",
  integer: "number",
  object: "Record<string, unknown>",
  array: "unknown[]",
  stringMap: "Record<string, string>",
  raw: "unknown",
};

export function writtenTypeOf(place, indent) {
  if (place.fields && place.fields.length > 0) return writtenObjectType(place.fields, indent);
  if (place.elements) return `Array<${writtenTypeOf(place.elements, indent)}>`;
  const parts = [];
  for (const reading of place.readings) {
    if (reading === "enumeration") parts.push(...place.values.map(quote));
    else if (writtenReadingTypes[reading]) parts.push(writtenReadingTypes[reading]);
    else throw new Error(`unknown reading ${reading}`);
  }
  if (parts.length === 0 || parts.includes("unknown")) return "unknown";
  return [...new Set(parts)].join(" | ");
}

export function writtenObjectType(fields, indent) {
  const inner = indent + "  ";
  const lines = fields.map((f) => {
    const readings = f.readings.length ? f.readings.join(", ") : "any JSON";
    return `${inner}/** ${readings}${f.required ? "; always present" : ""} */\n` +
      `${inner}${property(f.key)}${f.required ? "" : "?"}: ${writtenTypeOf(f, inner)};`;
  });
  return `{\n${lines.join("\n")}\n${indent}}`;
}

// The payload declarations of `families`' accepted actions (two lines each,
// for an interface body at `indent`), and which actions require a payload or
// are never accepted.
function payloadDeclarations(families, indent) {
  const lines = [];
  const required = [];
  const never = [];
  const accepted = [];
  for (const family of families) {
    const actions = [];
    for (const action of family.actions) {
      if (action.payload === "never") {
        never.push(action.action);
        continue;
      }
      actions.push(action.action);
      if (action.payload === "required") required.push(action.action);
      const payload = action.fields.length ? objectType(action.fields, indent) : "Record<string, unknown>";
      lines.push(`${indent}/** ${family.name}: ${action.case}; payload ${action.payload} */`);
      lines.push(`${indent}${quote(action.action)}: ${payload};`);
    }
    accepted.push({ name: family.name, actions });
  }
  return { lines, required, never, accepted };
}

// What the page function receives for each way native code writes an
// argument; a tail argument is the rest of the call, written by the caller.
const writtenTypes = {
  text: "string",
  quotedBool: '"true" | "false"',
  boolean: "boolean",
  number: "number",
};

// The page function's name and parameters, as the catalogue declares them.
export function pageFunctionSignature(fn) {
  if (fn.arguments.some((a) => !writtenTypes[a.written])) return { name: fn.function, parameters: "...args: unknown[]" };
  const parameters = fn.arguments.map((a) => `${a.name}: ${writtenTypes[a.written]}`);
  return { name: fn.function, parameters: parameters.join(", ") };
}

export function generate(catalogue) {
  const out = [];
  out.push("// Generated by scripts/generate-actions.mjs from `websdk-inspect --catalogue`: do not edit.");
  out.push("// `npm run generate` rewrites it; `npm test` fails while it differs from the native catalogue.");
  out.push("");
  const { lines, required, never, accepted } = payloadDeclarations(catalogue.families, "  ");
  out.push("/** Every action a native plugin family accepts, with the payload keys its reader reads. */");
  out.push("export interface WebSDKActionPayloads {");
  out.push(...lines);
  out.push("}");
  out.push("");
  out.push("export type WebSDKAction = keyof WebSDKActionPayloads;");
  out.push("");
  out.push("/** Actions that are refused without a payload object. */");
  out.push(`export type WebSDKActionWithRequiredPayload =\n  | ${required.map(quote).join("\n  | ")};`);
  out.push("");
  out.push("/** Action strings the native side knows but never accepts (always answered 1004). */");
  out.push(`export type WebSDKRefusedAction = ${never.length ? never.map(quote).join(" | ") : "never"};`);
  out.push("");
  out.push("/** The actions of each family. */");
  out.push("export interface WebSDKFamilyActions {");
  for (const f of accepted) out.push(`  ${property(f.name)}: ${f.actions.map(quote).join(" | ") || "never"};`);
  out.push("}");
  out.push("");
  out.push("/** The page functions native code calls, with the arguments it passes. */");
  out.push("export interface WebSDKPageFunctions {");
  for (const fn of catalogue.pageFunctions) {
    const { name, parameters } = pageFunctionSignature(fn);
    out.push(`  /** ${fn.case}: ${fn.script} */`);
    out.push(`  ${property(name)}: (${parameters}) => unknown;`);
  }
  out.push("}");
  out.push("");
  out.push("export type WebSDKPageFunctionName = keyof WebSDKPageFunctions;");
  out.push("");
  return out.join("\n");
}

// What native code accepts as an event name.
const eventName = /^[A-Za-z][A-Za-z0-9_.:-]{0,127}$/;

// A host app's typings: its families' actions and its events, as an
// augmentation of "@websdk/page" that request() and on() read. `source` names
// the catalogue in the header. Page functions are the library's, never a
// host's: a catalogue's "pageFunctions" are ignored.
export function generateHost(catalogue, source) {
  const families = catalogue.families ?? [];
  const events = catalogue.events ?? [];
  for (const event of events)
    if (typeof event.name !== "string" || !eventName.test(event.name))
      throw new Error(`not a valid event name: ${JSON.stringify(event.name)}`);
  const { lines, required, never } = payloadDeclarations(families, "    ");
  const out = [];
  out.push(`// Generated by websdk-typings from ${source}: do not edit.`);
  out.push("// Types the host app's own actions for request() and its events for on().");
  out.push("");
  out.push('declare module "@websdk/page" {');
  out.push("  /** Every action of the host's own families, with the payload keys its reader reads. */");
  out.push("  interface WebSDKHostActionPayloads {");
  out.push(...lines);
  out.push("  }");
  out.push("");
  out.push("  /** The host's actions that are refused without a payload object. */");
  out.push("  interface WebSDKHostRequiredPayloads {");
  for (const action of required) out.push(`    ${quote(action)}: true;`);
  out.push("  }");
  out.push("");
  out.push("  /** The events the host pushes, with the data native code writes. */");
  out.push("  interface WebSDKHostEvents {");
  for (const event of events) {
    const fields = event.fields ?? [];
    out.push(`    /** ${fields.length ? "data written by the host" : "data of no declared shape"} */`);
    out.push(`    ${quote(event.name)}: ${fields.length ? writtenObjectType(fields, "    ") : "unknown"};`);
  }
  out.push("  }");
  out.push("}");
  if (never.length) {
    out.push("");
    out.push(`// Known but never accepted (always answered 1004): ${never.join(", ")}.`);
  }
  out.push("");
  out.push("export {};");
  out.push("");
  return out.join("\n");
}

// The client's list of page functions, in the native table's order.
export function pageFunctionsDeclaration(catalogue) {
  const names = catalogue.pageFunctions.map((fn) => `  ${quote(fn.function)},\n`).join("");
  return `const PAGE_FUNCTIONS = [\n${names}] as const satisfies readonly WebSDKPageFunctionName[];`;
}

// `source` (src/index.ts) with its page function list replaced.
export function withPageFunctions(source, catalogue) {
  if (!pageFunctionList.test(source)) throw new Error("generate-actions: src/index.ts has no PAGE_FUNCTIONS list");
  return source.replace(pageFunctionList, () => pageFunctionsDeclaration(catalogue));
}

function readCatalogue(args) {
  const i = args.indexOf("--catalogue");
  if (i >= 0) return JSON.parse(readFileSync(args[i + 1], "utf8"));
  const inspect = process.env.WEBSDK_INSPECT || resolve(here, "../../build/websdk-inspect");
  if (!existsSync(inspect)) {
    console.error(`generate-actions: ${inspect} not found; build websdk-inspect or set WEBSDK_INSPECT`);
    process.exit(2);
  }
  return JSON.parse(execFileSync(inspect, ["--catalogue"], { encoding: "utf8", maxBuffer: 64 << 20 }));
}

if (process.argv[1] === fileURLToPath(import.meta.url)) {
  const args = process.argv.slice(2);
  const catalogue = readCatalogue(args);
  const source = readFileSync(client, "utf8");
  const files = [
    [target, existsSync(target) ? readFileSync(target, "utf8") : "", generate(catalogue)],
    [client, source, withPageFunctions(source, catalogue)],
  ];
  if (args.includes("--check")) {
    const stale = files.filter(([, current, text]) => current !== text).map(([file]) => file);
    if (stale.length) {
      console.error(`generate-actions: ${stale.join(", ")} differ from the native catalogue; run \`npm run generate\``);
      process.exit(1);
    }
    console.log("generate-actions: src/actions.d.ts and src/index.ts's page functions match the native catalogue");
  } else {
    for (const [file, current, text] of files)
      if (current !== text) {
        writeFileSync(file, text);
        console.log(`generate-actions: wrote ${file}`);
      }
  }
}
