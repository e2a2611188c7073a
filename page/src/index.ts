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

import type {
  WebSDKAction,
  WebSDKActionPayloads,
  WebSDKActionWithRequiredPayload,
  WebSDKPageFunctionName,
  WebSDKPageFunctions,
} from "./actions.js";

export type * from "./actions.js";

/** The status code of failures the client itself reports: timeouts, no bridge, a disposed client. */
export const CLIENT_STATUS_CODE = -1;

export interface RequestOptions {
  /** Reject when no answer came within this many milliseconds; 0 or absent waits for ever. */
  timeoutMs?: number;
}

/** Why a request failed: the "FAILED" envelope's fields, or the client's own (CLIENT_STATUS_CODE). */
export class WebSDKRequestError extends Error {
  readonly statusCode: number;
  readonly statusMessage: string | undefined;
  readonly requestId: string;

  constructor(statusCode: number, statusMessage: string | undefined, requestId: string) {
    super(`request ${requestId} failed: ${statusCode}${statusMessage === undefined ? "" : " " + statusMessage}`);
    this.name = "WebSDKRequestError";
    this.statusCode = statusCode;
    this.statusMessage = statusMessage;
    this.requestId = requestId;
  }
}

/** The envelope native code passes to nativeResponse. */
export interface WebSDKResponseEnvelope {
  type: string;
  statusCode: number;
  statusMessage?: string;
  requestId: string;
  payload?: string;
}

/**
 * The payloads of the host app's own actions, by action string: empty here,
 * filled in by the typings `websdk-typings` generates from the host's
 * catalogue (an augmentation of this module).
 */
export interface WebSDKHostActionPayloads {}

/** The host's actions that are refused without a payload object, each as `true`; augmented like WebSDKHostActionPayloads. */
export interface WebSDKHostRequiredPayloads {}

/** The data of each event the host app pushes, by event name; augmented like WebSDKHostActionPayloads. */
export interface WebSDKHostEvents {}

/** An action string of the host app's own. */
export type WebSDKHostAction = keyof WebSDKHostActionPayloads & string;
/** An event the host app pushes. */
export type WebSDKHostEventName = keyof WebSDKHostEvents & string;
/** What `on` calls for host event `N`. */
export type WebSDKHostEventHandler<N extends WebSDKHostEventName> = (data: WebSDKHostEvents[N]) => unknown;

/** Every action `request` takes, the built-in ones and the host's, with their payloads. */
export type WebSDKRequestPayloads = WebSDKActionPayloads & WebSDKHostActionPayloads;
/** Every action `request` refuses to send without a payload. */
export type WebSDKRequestWithRequiredPayload =
  | WebSDKActionWithRequiredPayload
  | (keyof WebSDKHostRequiredPayloads & WebSDKHostAction);

type OptionalPayloadAction = Exclude<WebSDKAction | WebSDKHostAction, WebSDKRequestWithRequiredPayload>;
type Handler = (...args: unknown[]) => unknown;

export interface WebSDKClient {
  /**
   * Asks native code. Resolves with the answer's payload, parsed (its text
   * when it is not JSON, undefined when there is none); rejects with a
   * WebSDKRequestError on a "FAILED" answer or a timeout.
   */
  request<A extends WebSDKRequestWithRequiredPayload>(
    type: A,
    payload: WebSDKRequestPayloads[A],
    options?: RequestOptions,
  ): Promise<unknown>;
  request<A extends OptionalPayloadAction>(
    type: A,
    payload?: WebSDKRequestPayloads[A],
    options?: RequestOptions,
  ): Promise<unknown>;
  /**
   * Calls `handler` whenever native code calls page function `name`; returns
   * the unsubscribe. A page function returns the first result that is not
   * undefined (the page's own earlier function first, then handlers in order).
   */
  on<N extends WebSDKPageFunctionName>(name: N, handler: WebSDKPageFunctions[N]): () => void;
  /**
   * Calls `handler` with the event's data whenever the host app pushes event
   * `name`; returns the unsubscribe. Any name that is not a page function and
   * matches EVENT_NAME is an event.
   */
  on<N extends WebSDKHostEventName>(name: N, handler: WebSDKHostEventHandler<N>): () => void;
  /** Gives the page its own functions back and rejects what is still waiting. */
  dispose(): void;
  /** What this client has asked and heard back so far: for a page's diagnostics and tests. */
  counts(): WebSDKClientCounts;
}

/** Every request this client made, by what became of its answer. */
export interface WebSDKClientCounts {
  /** Requests still waiting for their answer. */
  pending: number;
  /** Answers that settled a waiting request. */
  answered: number;
  /** Answers that came after their request had timed out. */
  late: number;
  /** Answers to one of this client's ids that nothing was waiting for (a second answer). */
  unasked: number;
}

export interface ClientOptions {
  /** The timeout of requests that give none (0 = none). */
  defaultTimeoutMs?: number;
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
] as const satisfies readonly WebSDKPageFunctionName[];

/** What an event name looks like: native code refuses to push any other. */
export const EVENT_NAME = /^[A-Za-z][A-Za-z0-9_.:-]{0,127}$/;

const CLIENT_KEY = Symbol.for("websdk.page.client");

interface Pending {
  resolve(value: unknown): void;
  reject(error: WebSDKRequestError): void;
  timer: ReturnType<typeof setTimeout> | undefined;
}

type Target = Record<PropertyKey, unknown>;

function randomTag(): string {
  const bytes = new Uint8Array(6);
  const crypto = (globalThis as { crypto?: { getRandomValues?(a: Uint8Array): Uint8Array } }).crypto;
  if (crypto?.getRandomValues) crypto.getRandomValues(bytes);
  else for (let i = 0; i < bytes.length; ++i) bytes[i] = Math.floor(Math.random() * 256);
  return Array.from(bytes, (b) => b.toString(36).padStart(2, "0")).join("");
}

function parsePayload(payload: string | undefined): unknown {
  if (payload === undefined) return undefined;
  try {
    return JSON.parse(payload);
  } catch {
    return payload;
  }
}

// A global the client answers through while the page may still set its own:
// reading gives the client's function, assigning sets the page's own, which
// the client calls for whatever is not its business.
class Slot {
  own: Handler | undefined;
  private readonly saved: PropertyDescriptor | undefined;

  constructor(
    private readonly target: Target,
    private readonly name: string,
    private readonly dispatch: Handler,
  ) {
    this.saved = Object.getOwnPropertyDescriptor(target, name);
    const before = target[name];
    if (typeof before === "function") this.own = before as Handler;
    this.install();
  }

  install(): void {
    Object.defineProperty(this.target, this.name, {
      configurable: true,
      enumerable: true,
      get: () => this.dispatch,
      set: (value: unknown) => {
        this.own = typeof value === "function" ? (value as Handler) : undefined;
      },
    });
  }

  // A later `function nativeResponse() {}` in another script replaces the
  // property outright; take it as the page's own and stand in front again.
  heal(): void {
    const now = this.target[this.name];
    if (now === this.dispatch) return;
    this.own = typeof now === "function" ? (now as Handler) : undefined;
    this.install();
  }

  restore(): void {
    if (this.saved && !("value" in this.saved)) {
      Object.defineProperty(this.target, this.name, this.saved);
    } else {
      Object.defineProperty(this.target, this.name, {
        configurable: true,
        enumerable: true,
        writable: true,
        value: this.own ?? this.saved?.value,
      });
    }
  }
}

function reportLater(error: unknown): void {
  setTimeout(() => {
    throw error;
  }, 0);
}

class Client implements WebSDKClient {
  private readonly pending = new Map<string, Pending>();
  private readonly expired = new Set<string>();
  private readonly handlers = new Map<string, Handler[]>();
  // Apart from the page functions': an event is never called as a page function.
  private readonly eventHandlers = new Map<string, Handler[]>();
  private readonly slots: Slot[] = [];
  private readonly responseSlot: Slot;
  private readonly eventSlot: Slot;
  private readonly prefix = `wsdk-${randomTag()}-`;
  private counter = 0;
  private answered = 0;
  private late = 0;
  private unasked = 0;

  constructor(
    private readonly target: Target,
    private readonly options: ClientOptions,
  ) {
    this.responseSlot = new Slot(target, "nativeResponse", (envelope) => this.answer(envelope));
    this.eventSlot = new Slot(target, "nativeEvent", (name, data) => this.event(name, data));
    this.slots.push(this.responseSlot, this.eventSlot);
    for (const name of PAGE_FUNCTIONS) {
      const slot: Slot = new Slot(target, name, (...args) => this.call(slot, name, args));
      this.slots.push(slot);
    }
  }

  request(type: string, payload?: unknown, options: RequestOptions = {}): Promise<unknown> {
    this.responseSlot.heal();
    const requestId = this.prefix + ++this.counter;
    return new Promise((resolve, reject) => {
      const fail = (message: string) => reject(new WebSDKRequestError(CLIENT_STATUS_CODE, message, requestId));
      const handler = (this.target.webkit as { messageHandlers?: Record<string, { postMessage?: unknown }> } | undefined)
        ?.messageHandlers?.nativeRequest;
      if (!handler || typeof handler.postMessage !== "function") {
        fail("no native bridge: window.webkit.messageHandlers.nativeRequest is missing");
        return;
      }
      const timeoutMs = options.timeoutMs ?? this.options.defaultTimeoutMs ?? 0;
      const timer =
        timeoutMs > 0
          ? setTimeout(() => {
              this.pending.delete(requestId);
              this.expired.add(requestId);
              fail(`no answer within ${timeoutMs} ms`);
            }, timeoutMs)
          : undefined;
      this.pending.set(requestId, { resolve, reject, timer });
      try {
        const message = JSON.stringify({ type, requestId, payload });
        (handler.postMessage as (m: unknown) => void).call(handler, { message });
      } catch (error) {
        this.pending.delete(requestId);
        if (timer !== undefined) clearTimeout(timer);
        fail(`the request could not be posted: ${String(error)}`);
      }
    });
  }

  counts(): WebSDKClientCounts {
    return { pending: this.pending.size, answered: this.answered, late: this.late, unasked: this.unasked };
  }

  on(name: string, handler: Handler): () => void {
    let handlers = this.handlers;
    if (!(PAGE_FUNCTIONS as readonly string[]).includes(name)) {
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
      if (at >= 0) list.splice(at, 1);
    };
  }

  dispose(): void {
    for (const slot of this.slots) slot.restore();
    for (const [requestId, p] of this.pending) {
      if (p.timer !== undefined) clearTimeout(p.timer);
      p.reject(new WebSDKRequestError(CLIENT_STATUS_CODE, "the client was disposed", requestId));
    }
    this.pending.clear();
    delete this.target[CLIENT_KEY];
  }

  private answer(received: unknown): unknown {
    let envelope = received;
    if (typeof envelope === "string") {
      try {
        envelope = JSON.parse(envelope);
      } catch {
        // not an envelope of ours
      }
    }
    const e = (envelope ?? {}) as Partial<WebSDKResponseEnvelope>;
    const requestId = typeof e.requestId === "string" ? e.requestId : undefined;
    const waiting = requestId === undefined ? undefined : this.pending.get(requestId);
    if (requestId !== undefined && waiting) {
      this.pending.delete(requestId);
      this.answered++;
      if (waiting.timer !== undefined) clearTimeout(waiting.timer);
      if (e.type === "SUCCESS") waiting.resolve(parsePayload(e.payload));
      else waiting.reject(new WebSDKRequestError(typeof e.statusCode === "number" ? e.statusCode : 1, e.statusMessage, requestId));
      return undefined;
    }
    if (requestId !== undefined && this.expired.delete(requestId)) {
      this.late++;  // ours, too late
      return undefined;
    }
    if (requestId?.startsWith(this.prefix)) {
      this.unasked++;  // ours, answered already
      return undefined;
    }
    return this.responseSlot.own?.(received);
  }

  private call(slot: Slot, name: string, args: unknown[]): unknown {
    return callEach(slot.own, args, this.handlers.get(name), args);
  }

  // The page's own nativeEvent hears every event, as (name, data); handlers
  // hear their event's data.
  private event(name: unknown, data: unknown): unknown {
    const handlers = typeof name === "string" ? this.eventHandlers.get(name) : undefined;
    return callEach(this.eventSlot.own, [name, data], handlers, [data]);
  }
}

// Calls the page's own function, then each handler (a copy of the list: a
// handler may unsubscribe), and returns the first result that is not undefined.
function callEach(own: Handler | undefined, ownArgs: unknown[], handlers: Handler[] | undefined, args: unknown[]): unknown {
  let result: unknown = undefined;
  const take = (f: Handler, a: unknown[]) => {
    try {
      const r = f(...a);
      if (result === undefined) result = r;
    } catch (error) {
      reportLater(error);  // one failing handler does not silence the others
    }
  };
  if (own) take(own, ownArgs);
  for (const handler of [...(handlers ?? [])]) take(handler, args);
  return result;
}

/**
 * The client of `target` (the page's window by default), made and installed
 * on first use; later calls return the same one.
 */
export function createClient(target: object = globalThis, options: ClientOptions = {}): WebSDKClient {
  const t = target as Target;
  const existing = t[CLIENT_KEY] as WebSDKClient | undefined;
  if (existing) return existing;
  const client = new Client(t, options);
  Object.defineProperty(t, CLIENT_KEY, { configurable: true, value: client });
  return client;
}

/** request() of the page's own client. */
export const request = ((...args: Parameters<Client["request"]>) =>
  (createClient() as Client).request(...args)) as WebSDKClient["request"];

/** on() of the page's own client. */
export function on<N extends WebSDKPageFunctionName>(name: N, handler: WebSDKPageFunctions[N]): () => void;
export function on<N extends WebSDKHostEventName>(name: N, handler: WebSDKHostEventHandler<N>): () => void;
export function on(name: string, handler: Handler): () => void {
  return (createClient() as Client).on(name, handler);
}
