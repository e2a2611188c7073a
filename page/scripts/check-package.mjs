// Checks the package as it is published and installed, not as src/ compiles:
// packs it (dist/ must be built), runs publint and @arethetypeswrong/cli on the
// tarball, installs the tarball into a copy of test/consumer, and there
// writes a host's typings from test/host-catalogue.json with the installed
// websdk-typings bin, type-checks test/types.check.ts, test/host.check.ts,
// test/consumer/*.ts and the TypeScript snippets of README.md and
// docs/page-guide.md under "bundler" and "nodenext" resolution (all with the
// host's typings: they must not loosen the built-in ones, and the docs'
// snippets use its actions and events), then loads the module and the
// classic script through the exports map.
//
//   node scripts/check-package.mjs          (npm run check-package)
//   KEEP_CONSUMER=1 ...                     keep the temporary directory

import { execFileSync, spawn } from "node:child_process";
import { cpSync, existsSync, mkdtempSync, readdirSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { createRequire } from "node:module";
import { tmpdir } from "node:os";
import { join, resolve } from "node:path";
import { fileURLToPath } from "node:url";

const root = resolve(fileURLToPath(import.meta.url), "../..");
const require = createRequire(import.meta.url);

if (!existsSync(resolve(root, "dist/index.js"))) {
  console.error("check-package: dist/ is not built; run `npm run build` first");
  process.exit(2);
}

// The ```ts blocks of a markdown text.
function typescriptSnippets(markdown) {
  return [...markdown.matchAll(/^```ts\n([\s\S]*?)^```$/gm)].map((m) => m[1]);
}

function run(command, args, cwd) {
  return new Promise((done, fail) => {
    const child = spawn(command, args, { cwd, stdio: ["ignore", "pipe", "pipe"] });
    let output = "";
    child.stdout.on("data", (d) => (output += d));
    child.stderr.on("data", (d) => (output += d));
    child.on("error", fail);
    child.on("close", (code) => done({ code, output }));
  });
}

const failures = [];
async function check(name, command, args, cwd) {
  const { code, output } = await run(command, args, cwd);
  const text = output.trim();
  if (code === 0) console.log(`check-package: ${name}: ok${text && process.env.VERBOSE ? "\n" + text : ""}`);
  else failures.push(`${name} (exit ${code}):\n${text}`);
}

const temp = mkdtempSync(join(tmpdir(), "websdk-page-"));
try {
  // --ignore-scripts: npm test has just built; prepack would build again.
  const [packed] = JSON.parse(
    execFileSync("npm", ["pack", "--json", "--ignore-scripts", "--pack-destination", temp], {
      cwd: root,
      encoding: "utf8",
      stdio: ["ignore", "pipe", "inherit"],
    }),
  );
  const tarball = join(temp, packed.filename);
  console.log(`check-package: ${packed.filename}: ${packed.files.map((f) => f.path).sort().join(", ")}`);

  const consumer = join(temp, "consumer");
  cpSync(resolve(root, "test/consumer"), consumer, { recursive: true });
  for (const file of ["types.check.ts", "host.check.ts", "host-catalogue.json"])
    cpSync(resolve(root, "test", file), join(consumer, file));
  // The docs' TypeScript snippets, each a module of its own. The guide lives
  // outside the package and may be absent from a copy of page/ alone.
  for (const [name, file, required] of [
    ["readme", resolve(root, "README.md"), true],
    ["guide", resolve(root, "../docs/page-guide.md"), false],
  ]) {
    if (!existsSync(file) && !required) {
      console.log(`check-package: ${file} not found; its snippets are not checked`);
      continue;
    }
    const snippets = typescriptSnippets(readFileSync(file, "utf8"));
    if (snippets.length === 0) throw new Error(`check-package: no \`\`\`ts snippet in ${file}`);
    snippets.forEach((text, i) => writeFileSync(join(consumer, `${name}-${i + 1}.ts`), text));
  }
  execFileSync("npm", ["install", "--no-save", "--no-package-lock", "--ignore-scripts", "--no-audit", "--no-fund", "--offline", tarball], {
    cwd: consumer,
    stdio: ["ignore", "ignore", "inherit"],
  });

  // The bin as a host's build runs it: linked by npm, from the installed package.
  execFileSync(join(consumer, "node_modules/.bin/websdk-typings"), ["--catalogue", "host-catalogue.json", "--out", "host-actions.d.ts"], {
    cwd: consumer,
    stdio: ["ignore", "ignore", "inherit"],
  });
  console.log("check-package: websdk-typings (installed): ok");

  const { publint } = await import("publint");
  const { formatMessage } = await import("publint/utils");
  const bytes = readFileSync(tarball);
  const { messages } = await publint({
    pack: { tarball: bytes.buffer.slice(bytes.byteOffset, bytes.byteOffset + bytes.byteLength) },
    strict: true,
  });
  const pkg = JSON.parse(readFileSync(resolve(root, "package.json"), "utf8"));
  // strict: warnings are errors; suggestions are printed only.
  for (const m of messages) console.log(`check-package: publint ${m.type}: ${formatMessage(m, pkg)}`);
  if (messages.some((m) => m.type !== "suggestion")) failures.push("publint reported the errors above");
  else console.log("check-package: publint: ok");

  const tsc = require.resolve("typescript/bin/tsc");
  const attwPackage = require.resolve("@arethetypeswrong/cli/package.json");
  const attw = resolve(attwPackage, "..", require(attwPackage).bin.attw);
  const node = process.execPath;
  await Promise.all([
    // ESM-only on purpose: CommonJS and pre-exports (node10) resolution are out of scope.
    check("attw", node, [attw, tarball, "--profile", "esm-only", "--no-color"], consumer),
    ...readdirSync(consumer)
      .filter((f) => /^tsconfig\.(?!base\b).*\.json$/.test(f))
      .map((config) => check(`tsc -p ${config}`, node, [tsc, "-p", config], consumer)),
    check("node smoke.mjs", node, ["smoke.mjs"], consumer),
  ]);
} finally {
  if (process.env.KEEP_CONSUMER) console.log(`check-package: kept ${temp}`);
  else rmSync(temp, { recursive: true, force: true });
}

if (failures.length) {
  for (const f of failures) console.error(`check-package: FAILED ${f}\n`);
  process.exit(1);
}
