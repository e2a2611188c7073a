// dist/websdk-page.js: the client as a classic script, for pages without a
// bundler or module loader. It defines window.WebSDKPage with the module's
// exports. `npm run bundle` also copies it to websdk-page.js, which the native
// build embeds (the demo page, the real-engine tests) without needing Node.

import { readFileSync, writeFileSync } from "node:fs";
import { dirname, resolve } from "node:path";
import { fileURLToPath } from "node:url";

const dist = resolve(dirname(fileURLToPath(import.meta.url)), "../dist");
const names = [];
const body = readFileSync(resolve(dist, "index.js"), "utf8")
  .replace(/^export (const|function|class) ([A-Za-z_$][\w$]*)/gm, (_, keyword, name) => {
    names.push(name);
    return `${keyword} ${name}`;
  })
  .replace(/^export \{\};\n/m, "");
if (/^\s*(export|import)\b/m.test(body)) throw new Error("build-global: dist/index.js has an import or export this wrapper does not handle");
writeFileSync(
  resolve(dist, "websdk-page.js"),
  `// Built from page/src/index.ts by \`npm run bundle\`: do not edit.\n(function () {\n"use strict";\n${body}\nglobalThis.WebSDKPage = { ${names.join(", ")} };\n})();\n`,
);
console.log(`build-global: dist/websdk-page.js defines WebSDKPage { ${names.join(", ")} }`);
