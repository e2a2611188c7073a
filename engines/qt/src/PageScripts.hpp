#pragma once
// The scripts that carry a page's messages to the engine under Qt WebEngine.
//
// The page's main world gets window.webkit.messageHandlers, as under WebKit,
// and a document mark it cannot change. The channel to the UI process lives
// in an isolated world the page cannot reach: a page script can hand it a
// message (a DOM event, as postMessage does), but the sender's URL and its
// document are read there, never taken from what the page says.

#include <string>
#include <string_view>

namespace websdk::qtwebengine::scripts {

/// The object the isolated world's channel reaches in the UI process.
inline constexpr char kChannelObject[] = "websdk";
/// What an evaluation meant for another document completes with.
inline constexpr char kDropped[] = "\x01websdk:dropped";
/// A message over the size limit goes as its first this many UTF-16 units
/// only: it is refused unread, and its start says what it was.
inline constexpr std::size_t kRefusedMessageStart = 4096;

/// The main world's part, at document creation in every frame, ahead of any
/// page script.
/// `handlers` is a JSON array of the handler names. Without `serviceWorkers`
/// the page has no navigator.serviceWorker, nor do the blank frames it makes
/// (which run no script of their own); the engine refuses a worker's script
/// besides.
inline std::string mainWorld(std::string_view handlers, bool serviceWorkers) {
  std::string s = R"JS((function () {
'use strict';
const names = )JS";
  s += handlers;
  s += ", serviceWorkers = ";
  s += serviceWorkers ? "true" : "false";
  s += R"JS(;
if (!serviceWorkers) {
  const hide = w => { try { delete w.Navigator.prototype.serviceWorker; } catch (e) {} };
  hide(window);
  for (const [type, key] of [[HTMLIFrameElement, 'contentWindow'], [HTMLIFrameElement, 'contentDocument']]) {
    const get = Object.getOwnPropertyDescriptor(type.prototype, key).get;
    Object.defineProperty(type.prototype, key, {configurable: true, enumerable: true, get() {
      const value = get.call(this);
      if (value) hide(key === 'contentWindow' ? value : value.defaultView);
      return value;
    }});
  }
}
const dispatch = EventTarget.prototype.dispatchEvent, listen = EventTarget.prototype.addEventListener;
const Custom = CustomEvent, init = CustomEvent.prototype.initCustomEvent, stringify = JSON.stringify;
const freeze = Object.freeze;
const random = new Uint32Array(4);
crypto.getRandomValues(random);
const mark = Array.from(random, n => n.toString(16).padStart(8, '0')).join('');
// The document's mark: answers for another document never run in this one.
Object.defineProperty(window, '__websdkDocument', {value: mark});
// The app's answers come as calls of these, with the mark of the document
// they are for: nativeResponse is found as a page script would find it. The
// answers of a burst come in one call; one whose nativeResponse throws is
// reported as an uncaught error of its own (through the page's setTimeout as
// it was at the start, whatever the page did to it since) and the next
// still runs.
const dropped = ')JS";
  s += kDropped;
  s += R"JS(', report = setTimeout.bind(window);
Object.defineProperty(window, '__websdkAnswer', {value: (to, envelope) => to === mark ? nativeResponse(envelope) : dropped});
Object.defineProperty(window, '__websdkAnswers', {value: (to, ...envelopes) => {
  if (to !== mark) return dropped;
  for (let i = 0; i < envelopes.length; ++i) {
    try {
      nativeResponse(envelopes[i]);
    } catch (e) {
      report(() => { throw e; });
    }
  }
}});
// One event, dispatched again for each message: a fresh event per message
// costs the page far more than the dispatch. A message sent from a listener
// of that event, while it is on its way, gets an event of its own.
const event = new Custom('websdk:request');
let sending = false;
const send = (kind, detail) => {
  if (sending) return dispatch.call(window, new Custom(kind, {detail}));
  sending = true;
  try {
    init.call(event, kind, false, false, detail);
    dispatch.call(window, event);
  } finally {
    sending = false;
  }
};
listen.call(window, 'websdk:listening', () => send('websdk:hello', mark));
send('websdk:hello', mark);
// As under WebKit, postMessage lives on the handlers' prototype.
const nameOf = new WeakMap(), nameOfGet = WeakMap.prototype.get;
class UserMessageHandler {
  postMessage(body) {
    const name = nameOfGet.call(nameOf, this);
    if (name === undefined) throw new TypeError('Illegal invocation');
    if (name === 'nativeRequest') {
      const message = body !== null && typeof body === 'object' ? body.message : undefined;
      if (typeof message === 'string') send('websdk:request', message);
      return;
    }
    const text = stringify(body);
    send('websdk:post', [name, text === undefined ? 'null' : text, false]);
  }
}
freeze(UserMessageHandler.prototype);
const handlers = {};
for (const name of names) {
  const handler = Object.create(UserMessageHandler.prototype);
  nameOf.set(handler, name);
  handlers[name] = freeze(handler);
}
Object.defineProperty(window, 'webkit', {value: freeze({messageHandlers: freeze(handlers)}), enumerable: true});
})();
)JS";
  return s;
}

/// The isolated world's part, after Qt's qwebchannel.js. `limit` is the size
/// limit in bytes.
inline std::string isolatedWorld(std::size_t limit) {
  std::string s = "(function () {\n'use strict';\nconst limit = " + std::to_string(limit) +
                  ", start = " + std::to_string(kRefusedMessageStart) + ";\n";
  s += R"JS(let mark = null, bridge = null, cache = {};
const waiting = [];
const isTop = window === window.top;
// Only the top frame has the channel (Qt takes the channel's messages from
// the main frame alone). A frame sends its messages to the top frame's
// isolated world over a port of its own, handed over once: the page's scripts
// never see the handover, so they can neither read the port's messages nor
// stop them.
// The first message of a task goes to the app at once; the others of that
// task go together at its end: a burst costs two crossings, not one each.
let batchBytes = 0, inTask = false;
// Calls go as writes of the object's property: no reply comes back. Qt's
// channel keeps the last value written; the page's text is not kept there.
const deliver = calls => {
  bridge.calls = calls;
  for (const key in cache) cache[key] = null;
};
const flush = () => {
  if (!bridge || waiting.length === 0) return;
  batchBytes = 0;
  deliver(waiting.splice(0));
};
const later = Promise.resolve(), then = Promise.prototype.then;
const endOfTask = () => {
  inTask = false;
  flush();
};
const toApp = args => {
  const first = !inTask;
  if (first) {
    inTask = true;
    then.call(later, endOfTask);
  }
  if (first && bridge && waiting.length === 0) return deliver([args]);
  waiting.push(args);
  batchBytes += args[4] === undefined ? 0 : args[4].length;
  if (batchBytes > 1048576) flush();
};
let port = null;
const toTop = args => {
  if (port === null) {
    const pipe = new MessageChannel();
    port = pipe.port1;
    window.top.postMessage({websdkFramePort: 1}, '*', [pipe.port2]);
  }
  port.postMessage(args);
};
const call = isTop ? toApp : toTop;
// Lone surrogate halves become U+FFFD, as a JSON parse of the text would read them.
const surrogate = /[\uD800-\uDFFF]/;
const lone = /[\uD800-\uDBFF](?![\uDC00-\uDFFF])|(?<![\uD800-\uDBFF])[\uDC00-\uDFFF]/g;
window.addEventListener('websdk:hello', event => {
  if (mark !== null || typeof event.detail !== 'string') return;
  mark = event.detail;
  if (isTop) call(['hello', mark, location.href]);
});
// `counted`: the page's own text, whose size in UTF-16 units the app checks.
const post = (name, text, counted) => {
  const units = text.length;
  if (units > limit) text = text.substring(0, start);
  if (surrogate.test(text)) text = text.replace(lone, '\uFFFD');
  call(['post', mark, location.href, name, text, counted ? units : -1, isTop]);
};
// A request's text comes as it is: a string crosses from the page's world
// uncopied, an array would be copied.
window.addEventListener('websdk:request', event => {
  if (mark !== null && typeof event.detail === 'string') post('nativeRequest', event.detail, true);
});
window.addEventListener('websdk:post', event => {
  const d = event.detail;
  if (mark === null || !Array.isArray(d) || typeof d[0] !== 'string' || typeof d[1] !== 'string') return;
  post(d[0], d[1], d[0] === 'nativeRequest');
});
if (isTop) {
  // A frame's URL as the browser vouches for it: held to the origin its port
  // came from. A blank or srcdoc frame keeps its own hostless URL, which
  // names no host to trust, as it does on WebKit.
  const heldTo = (url, origin) => {
    try {
      if (new URL(url).origin === origin || /^about:/i.test(url)) return url;
    } catch (e) {}
    return origin;
  };
  const fromFrame = (origin, args) => {
    if (mark === null || !Array.isArray(args) || args.length !== 7 || args[0] !== 'post') return;
    call(['post', mark, heldTo(String(args[2]), origin), String(args[3]), String(args[4]), Number(args[5]), false]);
  };
  // First of all the window's listeners (capture, added before any page
  // script): a frame's port is taken before the page could see it, and the
  // event goes no further.
  window.addEventListener('message', event => {
    const d = event.data;
    if (d === null || typeof d !== 'object' || d.websdkFramePort !== 1 || event.ports.length !== 1) return;
    event.stopImmediatePropagation();
    if (event.source === window || event.source === null) return;
    const origin = event.origin;
    // Moved at once into a pipe of this world's own, so that no other
    // holder of the event's port object could use it.
    const relay = new MessageChannel();
    relay.port2.onmessage = moved => {
      relay.port2.close();
      const framePort = moved.ports[0];
      if (framePort) framePort.onmessage = m => fromFrame(origin, m.data);
    };
    relay.port1.postMessage(null, [event.ports[0]]);
  }, true);
  new QWebChannel(qt.webChannelTransport, channel => {
    bridge = channel.objects.)JS";
  s += kChannelObject;
  s += R"JS(;
    cache = bridge.__propertyCache__ || {};
    flush();
  });
}
window.dispatchEvent(new CustomEvent('websdk:listening'));
})();
)JS";
  return s;
}

/// An answer: kAnswerStart, the document's mark, kAnswerMarkEnd, the
/// envelope (encodeEnvelopeForScript), then kAnswerEnd. A document without the answer function
/// (one the scripts never reached, as an error page) completes with kDropped.
inline constexpr std::string_view kAnswerStart = "typeof __websdkAnswer === 'function' ? __websdkAnswer('";
inline constexpr std::string_view kAnswerMarkEnd = "',";
inline constexpr std::string_view kAnswerEnd = ") : '\x01websdk:dropped'";
static_assert(kAnswerEnd.substr(5, sizeof kDropped - 1) == std::string_view(kDropped));
/// The answers of a burst, as one call: kAnswersStart, the mark, then for
/// each answer "," and its envelope (encodeEnvelopeForScript), then kAnswerEnd.
inline constexpr std::string_view kAnswersStart = "typeof __websdkAnswers === 'function' ? __websdkAnswers('";
inline constexpr std::string_view kAnswersMarkEnd = "'";

/// Around a script, runs it only in the document marked `mark`; elsewhere it
/// completes with kDropped: what goes before the script, and after it.
inline std::string inDocumentStart(std::string_view mark) {
  std::string s = "if (window.__websdkDocument !== '";
  s += mark;
  s += "') '";
  s += kDropped;
  s += "'; else {\n";
  return s;
}
inline constexpr std::string_view kInDocumentEnd = "\n}";

}  // namespace websdk::qtwebengine::scripts
