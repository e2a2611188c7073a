// Built from page/src/index.ts by `npm run bundle`: do not edit.
(function () {
"use strict";
// The page side of the WebSDK bridge.
//
//   import { request, on } from "@websdk/page";
//   const cart = await request("GET_LOCAL_CART", { tenant: { marketplaceId: "meals" } });
//   on("handleHardwareBack", () => true);
//
// A request posts {"type", "requestId", "payload"} to the "nativeRequest"
// message handler; native code answers later through the page's global
// `nativeResponse`, which this client installs and dispatches by request id.
// Native code also calls fixed page functions on its own (keyboard, login,
// back button...) and pushes the host app's own events through the global
// `nativeEvent(name, data)`; `on` subscribes to both.
/** The status code of failures the client itself reports: timeouts, no bridge, a disposed client. */
const CLIENT_STATUS_CODE = -1;
/** Why a request failed: the "FAILED" envelope's fields, or the client's own (CLIENT_STATUS_CODE). */
class WebSDKRequestError extends Error {
    constructor(statusCode, statusMessage, requestId) {
        super(`request ${requestId} failed: ${statusCode}${statusMessage === undefined ? "" : " " + statusMessage}`);
        this.name = "WebSDKRequestError";
        this.statusCode = statusCode;
        this.statusMessage = statusMessage;
        this.requestId = requestId;
    }
}
// Every page function native code calls: installed up front, so that a call
// never meets an undefined function. The list is the native table's, written
// by scripts/generate-actions.mjs (`npm run generate`): do not edit it.
const PAGE_FUNCTIONS = [
    "keyboardStateChanged",
    "onScreenVisibility",
    "openDeeplink",
    "LOGIN_STATE_CHANGED",
    "allowNativeBottomBarExit",
    "SEARCH_QUERY_INPUT",
    "swipeBottomsheet",
    "HANDLE_PX_SEARCH_ACTIONS",
    "updateScratchCardsData",
    "globalJSBridgeHandler",
    "BUILD_PX_CART",
    "handleHardwareBack",
    "onHalfCardBackgroundTap",
    "UPDATE_SELECTED_ADDRESS",
    "pageResume",
];
/** What an event name looks like: native code refuses to push any other. */
const EVENT_NAME = /^[A-Za-z][A-Za-z0-9_.:-]{0,127}$/;
const CLIENT_KEY = Symbol.for("websdk.page.client");
function randomTag() {
    const bytes = new Uint8Array(6);
    const crypto = globalThis.crypto;
    if (crypto?.getRandomValues)
        crypto.getRandomValues(bytes);
    else
        for (let i = 0; i < bytes.length; ++i)
            bytes[i] = Math.floor(Math.random() * 256);
    return Array.from(bytes, (b) => b.toString(36).padStart(2, "0")).join("");
}
function parsePayload(payload) {
    if (payload === undefined)
        return undefined;
    try {
        return JSON.parse(payload);
    }
    catch {
        return payload;
    }
}
// A global the client answers through while the page may still set its own:
// reading gives the client's function, assigning sets the page's own, which
// the client calls for whatever is not its business.
class Slot {
    constructor(target, name, dispatch) {
        this.target = target;
        this.name = name;
        this.dispatch = dispatch;
        this.saved = Object.getOwnPropertyDescriptor(target, name);
        const before = target[name];
        if (typeof before === "function")
            this.own = before;
        this.install();
    }
    install() {
        Object.defineProperty(this.target, this.name, {
            configurable: true,
            enumerable: true,
            get: () => this.dispatch,
            set: (value) => {
                this.own = typeof value === "function" ? value : undefined;
            },
        });
    }
    // A later `function nativeResponse() {}` in another script replaces the
    // property outright; take it as the page's own and stand in front again.
    heal() {
        const now = this.target[this.name];
        if (now === this.dispatch)
            return;
        this.own = typeof now === "function" ? now : undefined;
        this.install();
    }
    restore() {
        if (this.saved && !("value" in this.saved)) {
            Object.defineProperty(this.target, this.name, this.saved);
        }
        else {
            Object.defineProperty(this.target, this.name, {
                configurable: true,
                enumerable: true,
                writable: true,
                value: this.own ?? this.saved?.value,
            });
        }
    }
}
function reportLater(error) {
    setTimeout(() => {
        throw error;
    }, 0);
}
class Client {
    constructor(target, options) {
        this.target = target;
        this.options = options;
        this.pending = new Map();
        this.expired = new Set();
        this.handlers = new Map();
        // Apart from the page functions': an event is never called as a page function.
        this.eventHandlers = new Map();
        this.slots = [];
        this.prefix = `wsdk-${randomTag()}-`;
        this.counter = 0;
        this.answered = 0;
        this.late = 0;
        this.unasked = 0;
        this.responseSlot = new Slot(target, "nativeResponse", (envelope) => this.answer(envelope));
        this.eventSlot = new Slot(target, "nativeEvent", (name, data) => this.event(name, data));
        this.slots.push(this.responseSlot, this.eventSlot);
        for (const name of PAGE_FUNCTIONS) {
            const slot = new Slot(target, name, (...args) => this.call(slot, name, args));
            this.slots.push(slot);
        }
    }
    request(type, payload, options = {}) {
        this.responseSlot.heal();
        const requestId = this.prefix + ++this.counter;
        return new Promise((resolve, reject) => {
            const fail = (message) => reject(new WebSDKRequestError(CLIENT_STATUS_CODE, message, requestId));
            const handler = this.target.webkit
                ?.messageHandlers?.nativeRequest;
            if (!handler || typeof handler.postMessage !== "function") {
                fail("no native bridge: window.webkit.messageHandlers.nativeRequest is missing");
                return;
            }
            const timeoutMs = options.timeoutMs ?? this.options.defaultTimeoutMs ?? 0;
            const timer = timeoutMs > 0
                ? setTimeout(() => {
                    this.pending.delete(requestId);
                    this.expired.add(requestId);
                    fail(`no answer within ${timeoutMs} ms`);
                }, timeoutMs)
                : undefined;
            this.pending.set(requestId, { resolve, reject, timer });
            try {
                const message = JSON.stringify({ type, requestId, payload });
                handler.postMessage.call(handler, { message });
            }
            catch (error) {
                this.pending.delete(requestId);
                if (timer !== undefined)
                    clearTimeout(timer);
                fail(`the request could not be posted: ${String(error)}`);
            }
        });
    }
    counts() {
        return { pending: this.pending.size, answered: this.answered, late: this.late, unasked: this.unasked };
    }
    on(name, handler) {
        let handlers = this.handlers;
        if (!PAGE_FUNCTIONS.includes(name)) {
            if (typeof name !== "string" || !EVENT_NAME.test(name))
                throw new TypeError(`not a page function, and not a valid event name (${EVENT_NAME}): ${typeof name === "string" ? JSON.stringify(name) : String(name)}`);
            handlers = this.eventHandlers;
            this.eventSlot.heal();
        }
        const list = handlers.get(name) ?? [];
        list.push(handler);
        handlers.set(name, list);
        return () => {
            const at = list.indexOf(handler);
            if (at >= 0)
                list.splice(at, 1);
        };
    }
    dispose() {
        for (const slot of this.slots)
            slot.restore();
        for (const [requestId, p] of this.pending) {
            if (p.timer !== undefined)
                clearTimeout(p.timer);
            p.reject(new WebSDKRequestError(CLIENT_STATUS_CODE, "the client was disposed", requestId));
        }
        this.pending.clear();
        delete this.target[CLIENT_KEY];
    }
    answer(received) {
        let envelope = received;
        if (typeof envelope === "string") {
            try {
                envelope = JSON.parse(envelope);
            }
            catch {
                // not an envelope of ours
            }
        }
        const e = (envelope ?? {});
        const requestId = typeof e.requestId === "string" ? e.requestId : undefined;
        const waiting = requestId === undefined ? undefined : this.pending.get(requestId);
        if (requestId !== undefined && waiting) {
            this.pending.delete(requestId);
            this.answered++;
            if (waiting.timer !== undefined)
                clearTimeout(waiting.timer);
            if (e.type === "SUCCESS")
                waiting.resolve(parsePayload(e.payload));
            else
                waiting.reject(new WebSDKRequestError(typeof e.statusCode === "number" ? e.statusCode : 1, e.statusMessage, requestId));
            return undefined;
        }
        if (requestId !== undefined && this.expired.delete(requestId)) {
            this.late++; // ours, too late
            return undefined;
        }
        if (requestId?.startsWith(this.prefix)) {
            this.unasked++; // ours, answered already
            return undefined;
        }
        return this.responseSlot.own?.(received);
    }
    call(slot, name, args) {
        return callEach(slot.own, args, this.handlers.get(name), args);
    }
    // The page's own nativeEvent hears every event, as (name, data); handlers
    // hear their event's data.
    event(name, data) {
        const handlers = typeof name === "string" ? this.eventHandlers.get(name) : undefined;
        return callEach(this.eventSlot.own, [name, data], handlers, [data]);
    }
}
// Calls the page's own function, then each handler (a copy of the list: a
// handler may unsubscribe), and returns the first result that is not undefined.
function callEach(own, ownArgs, handlers, args) {
    let result = undefined;
    const take = (f, a) => {
        try {
            const r = f(...a);
            if (result === undefined)
                result = r;
        }
        catch (error) {
            reportLater(error); // one failing handler does not silence the others
        }
    };
    if (own)
        take(own, ownArgs);
    for (const handler of [...(handlers ?? [])])
        take(handler, args);
    return result;
}
/**
 * The client of `target` (the page's window by default), made and installed
 * on first use; later calls return the same one.
 */
function createClient(target = globalThis, options = {}) {
    const t = target;
    const existing = t[CLIENT_KEY];
    if (existing)
        return existing;
    const client = new Client(t, options);
    Object.defineProperty(t, CLIENT_KEY, { configurable: true, value: client });
    return client;
}
/** request() of the page's own client. */
const request = ((...args) => createClient().request(...args));
function on(name, handler) {
    return createClient().on(name, handler);
}

globalThis.WebSDKPage = { CLIENT_STATUS_CODE, WebSDKRequestError, EVENT_NAME, createClient, request, on };
})();
