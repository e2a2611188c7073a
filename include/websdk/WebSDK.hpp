#pragma once
/// @file
/// The whole WebSDK for a host at once: the web view and every family's plugin
/// protocol and models. A host that serves a few families compiles faster with
/// websdk/webview/WebSDKWebView.hpp and those families' headers
/// (websdk/bridge/families/) alone.

#include "websdk/Log.hpp"
#include "websdk/bridge/Families.hpp"
#include "websdk/bridge/WebSDKJSCommunicationProtocol.hpp"
#include "websdk/bridge/WebSDKScriptHandler.hpp"
#include "websdk/webview/WebEngine.hpp"
#include "websdk/webview/WebSDKEvents.hpp"
#include "websdk/webview/WebSDKNavigationDelegate.hpp"
#include "websdk/webview/WebSDKRequestHeaders.hpp"
#include "websdk/webview/WebSDKWebView.hpp"

/// @namespace websdk
/// Everything of the WebSDK: the web view, the bridge and its twelve plugin
/// families with their request models, and the engine port.
