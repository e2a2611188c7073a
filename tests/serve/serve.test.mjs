// websdk-serve in a real browser: Debian's chromium, headless, driven by
// puppeteer-core (which downloads no browser). The demo's checkout runs
// against the tool twice, answered from an answers file (recording its
// traffic) and then from that recording; a declined request is explained in
// the tool's output; a push typed at the prompt reaches the page; a dev binary
// answers with the demo's own plugins; a page of another origin cannot open
// the bridge's socket.
//
//   WEBSDK_SERVE=build/websdk-serve WEBSDK_SERVE_PAGE=build/tools/serve/checkout \
//   WEBSDK_SERVE_WORK=/tmp node --test tests/serve/serve.test.mjs
import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import { mkdtempSync, rmSync } from 'node:fs';
import http from 'node:http';
import { tmpdir } from 'node:os';
import path from 'node:path';
import { after, before, test } from 'node:test';
import { fileURLToPath } from 'node:url';
import puppeteer from 'puppeteer-core';

const here = path.dirname(fileURLToPath(import.meta.url));
const serve = process.env.WEBSDK_SERVE;
const pageFolder = process.env.WEBSDK_SERVE_PAGE;
const answers = path.join(here, 'checkout-answers.json');
const work = mkdtempSync(path.join(process.env.WEBSDK_SERVE_WORK || tmpdir(), 'websdk-serve-'));
const recording = path.join(work, 'checkout.jsonl');
// Waits are bounded only so that a broken run ends; nothing is timed.
const bound = 30000;

/** websdk-serve as a developer runs it: its output read line by line, its prompt on stdin. */
class Tool {
  constructor(args, env = {}, program = serve) {
    this.lines = [];
    this.waiters = [];
    this.process = spawn(program, [pageFolder, '--port', '0', ...args], {
      env: { ...process.env, ...env },
      stdio: ['pipe', 'pipe', 'inherit'],
    });
    let partial = '';
    this.process.stdout.on('data', (chunk) => {
      partial += chunk;
      const lines = partial.split('\n');
      partial = lines.pop();
      for (const line of lines) {
        if (process.env.WEBSDK_SERVE_VERBOSE) console.log('  | ' + line);
        this.lines.push(line);
      }
      this.waiters = this.waiters.filter((w) => !w());
    });
  }
  /** The first line at or after `from` that matches, once it is printed. */
  line(pattern, from = 0) {
    const find = () => this.lines.slice(from).find((l) => pattern.test(l));
    return new Promise((resolve, reject) => {
      const timer = setTimeout(() => reject(new Error(`websdk-serve never printed ${pattern}:\n${this.lines.join('\n')}`)), bound);
      const check = () => {
        const found = find();
        if (found !== undefined) { clearTimeout(timer); resolve(found); }
        return found !== undefined;
      };
      if (!check()) this.waiters.push(check);
    });
  }
  count(pattern) { return this.lines.filter((l) => pattern.test(l)).length; }
  async url() { return (await this.line(/^websdk-serve: serving .* at (http:\S+)/)).match(/at (http:\S+)/)[1]; }
  type(text) { this.process.stdin.write(text + '\n'); }
  async stop() {
    this.type('quit');
    if (this.process.exitCode === null) await once(this.process, 'exit');
    return this.process.exitCode;
  }
}

let browser;
before(async () => {
  assert.ok(serve && pageFolder, 'WEBSDK_SERVE and WEBSDK_SERVE_PAGE name the tool and the checkout folder');
  browser = await puppeteer.launch({
    executablePath: process.env.CHROMIUM || '/usr/bin/chromium',
    headless: true,
    // Chromium's sandbox cannot start as root.
    args: process.getuid && process.getuid() === 0 ? ['--no-sandbox'] : [],
  });
});
after(async () => {
  await browser?.close();
  rmSync(work, { recursive: true, force: true });
});

const text = (page, selector) => page.$eval(selector, (e) => e.textContent);
const until = (page, fn, ...args) => page.waitForFunction(fn, { timeout: bound }, ...args);

/** The demo's scripted checkout: open, add a naan, apply the coupon, pay. */
async function checkout(page, url) {
  await page.goto(url);
  await until(page, () => document.body.dataset.state === 'ready');
  await until(page, () => !document.getElementById('address').textContent.startsWith('Finding'));
  await page.click('[data-step="add-garlic-naan"]');
  await until(page, () => document.getElementById('subtotal').textContent === '\u20b9555');
  await page.click('[data-step="coupon"]');
  await until(page, () => document.getElementById('discount').textContent.includes('120'));
  await page.click('[data-step="pay"]');
  await until(page, () => document.body.dataset.state === 'paid');
  return text(page, '#status');
}

test('the checkout completes against an answers file; the prompt pushes; a decline is explained', async () => {
  const tool = new Tool(['--answers', answers], { WEBSDK_RECORD: recording });
  const url = await tool.url();
  const page = await browser.newPage();
  try {
    assert.equal(await checkout(page, url), 'Order DV-4101 confirmed \u2014 arriving in 30 min');
    await tool.line(/^app -> page  SUCCESS 0 \S+  \{"status":"SUCCESS","orderId":"DV-4101"/);
    await tool.line(/^decoded      cart APPLY_COUPON /);

    // Pushes typed at the prompt: one the page shows, one it answers with a request.
    await page.evaluate(() => { window.globalJSBridgeHandler = (text) => { window.pushed = text; }; });
    tool.type('globalJSBridgeHandler {"event":"refresh","from":"the prompt"}');
    await until(page, () => window.pushed === '{"event":"refresh","from":"the prompt"}');
    const asked = tool.count(/^page -> app .*"GET_CURRENT_ADDRESS"/);
    tool.type('UPDATE_SELECTED_ADDRESS');
    await tool.line(/^app -> page  push UPDATE_SELECTED_ADDRESS\(\)$/);
    await tool.line(/^page -> app .*"GET_CURRENT_ADDRESS"/, tool.lines.findLastIndex((l) => /push UPDATE_SELECTED/.test(l)));
    assert.equal(tool.count(/^page -> app .*"GET_CURRENT_ADDRESS"/), asked + 1);

    // A request the contract declines: the page gets the bridge's own answer,
    // and the tool says which key, read how, was wanted.
    const failure = await page.evaluate(() =>
      client.request('APPLY_COUPON', { tenant: {}, cart_total_shown_to_coupon: 555 }).then(() => null, (f) => f));
    assert.equal(failure.statusCode, 1004);
    assert.equal(failure.statusMessage, 'not a valid request');
    assert.match(await tool.line(/^declined /),
      /^declined     APPLY_COUPON \(cart\): "restaurantId" is required \(read as strictString, a JSON string\) and is missing$/);
    assert.equal(tool.count(/^no answer /), 0, 'every request of the checkout is in the answers file');
  } finally {
    await page.close();
    assert.equal(await tool.stop(), 0);
  }
});

test('the checkout completes again, answered from the recording of the first', async () => {
  const tool = new Tool(['--replay', recording]);
  const page = await browser.newPage();
  try {
    assert.match(await checkout(page, await tool.url()), /^Order DV-4101 confirmed/);
    assert.equal(tool.count(/^no answer /), 0);
  } finally {
    await page.close();
    assert.equal(await tool.stop(), 0);
  }
});

test('a dev binary answers with the host\'s own plugins', { skip: !process.env.WEBSDK_SERVE_DEMO }, async () => {
  const tool = new Tool([], {}, process.env.WEBSDK_SERVE_DEMO);
  const page = await browser.newPage();
  try {
    assert.match(await checkout(page, await tool.url()), /^Order DV-4101 confirmed/);
    await tool.line(/^open http\S+ in a browser; answers from the host's plugins;/);
  } finally {
    await page.close();
    assert.equal(await tool.stop(), 0);
  }
});

test('a page of another origin cannot drive the bridge, even holding the token', async () => {
  const tool = new Tool(['--answers', answers]);
  const url = await tool.url();
  const served = await (await fetch(url)).text();
  const token = served.match(/\?token=' \+ "([0-9a-f]+)"/)[1];
  const port = new URL(url).port;
  // Another site on this machine: its page tries the socket and the page's text.
  const other = http.createServer((request, response) => {
    response.setHeader('content-type', 'text/html');
    response.end(`<!doctype html><script>
      window.outcome = new Promise((resolve) => {
        const socket = new WebSocket('ws://127.0.0.1:${port}/__websdk/socket?token=${token}');
        socket.onopen = () => resolve('open');
        socket.onclose = () => resolve('closed');
      });
      window.read = fetch('http://127.0.0.1:${port}/').then((r) => r.text()).then(() => 'read', () => 'blocked');
    </script>`);
  });
  other.listen(0, '127.0.0.1');
  await once(other, 'listening');
  const page = await browser.newPage();
  try {
    const otherOrigin = `http://127.0.0.1:${other.address().port}`;
    await page.goto(otherOrigin + '/');
    assert.equal(await page.evaluate(() => window.outcome), 'closed');
    assert.equal(await page.evaluate(() => window.read), 'blocked');
    await tool.line(new RegExp(`^refused      refused a WebSocket: its origin "${otherOrigin}" is not the one served`));
    assert.equal(tool.count(/^page -> app /), 0);

    // A name that resolves here but is not this server's (DNS rebinding) gets nothing.
    const rebound = await new Promise((resolve) =>
      http.get({ host: '127.0.0.1', port, path: '/', headers: { host: `attacker.example:${port}` } }, resolve));
    assert.equal(rebound.statusCode, 403);
    rebound.resume();
  } finally {
    await page.close();
    other.close();
    assert.equal(await tool.stop(), 0);
  }
});
