#pragma once
/// @file
/// Pages the app serves itself, under a scheme and host of its own
/// (app://checkout/index.html), from a folder or from memory. An engine that
/// supports them (WebKitGTKConfiguration::localPages) answers their requests
/// with what `answer` says; the whitelist, loadWebView and the bridge treat
/// their host like any other, so the app's headers reach them only when the
/// whitelist names them ("app://checkout").

#include "websdk/Export.hpp"
#include "websdk/webview/WebEngine.hpp"

#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace websdk {

/// One resource served from memory.
struct WEBSDK_EXPORT LocalResource {
  /// Its content.
  std::string bytes{};
  /// Its Content-Type ("text/html; charset=utf-8"); empty: from the path's extension.
  std::string mimeType{};
};

/// A request for a local page or resource, as the engine received it.
struct WEBSDK_EXPORT LocalRequest {
  /// The URL as the engine loads it.
  std::string url;
  /// Its HTTP method.
  std::string method = "GET";
  /// The fields as they arrived: the app's headers are among them on the
  /// first request of a load made with them, when the whitelist trusts it.
  HeaderFields headers{};
};

/// The engine's answer to a LocalRequest.
struct WEBSDK_EXPORT LocalAnswer {
  /// 200; 403 for a path that tries to leave the pages; 404 for one that is
  /// not there (or a host not served); 405 for a method other than GET or HEAD.
  int status = 404;
  /// The body's Content-Type.
  std::string mimeType = "text/plain; charset=utf-8";
  /// The body, unless `file` names one to stream.
  std::string bytes{};
  /// A file whose content is the body; empty for `bytes`.
  std::string file{};
  /// Memberwise.
  bool operator==(const LocalAnswer&) const = default;
};

/// The resource path a URL names under its pages: "index.html" for "/",
/// "a/index.html" for "/a/", query and fragment left off, escapes decoded per
/// segment. Nothing for a path that tries to leave the pages: a ".." segment
/// (escaped or not), or one holding an escaped slash, backslash or NUL.
WEBSDK_EXPORT std::optional<std::string> localPath(std::string_view url);

/// The Content-Type of a common web file by its extension (text types in
/// UTF-8); "application/octet-stream" for any other.
WEBSDK_EXPORT std::string mimeTypeFor(std::string_view path);

/// Pages served under `scheme://host`. The scheme is the app's own: none that
/// the web or the engine already handles. The host is lowercase ASCII (a URL
/// with another spelling names another host, which nothing serves).
struct WEBSDK_EXPORT LocalPages {
  std::string scheme = "app";  ///< The scheme, lowercase.
  std::string host;            ///< The host, lowercase ASCII.
  /// Files under this folder. A file reached through a link that leads out of
  /// it is not served.
  std::string folder{};
  /// Resources by path ("index.html", "js/app.js"), looked up before the folder.
  std::map<std::string, LocalResource, std::less<>> resources{};
  /// Asked first, on the UI thread, with the resource's path and the request
  /// (its header fields included); nothing lets the resources and the folder
  /// answer.
  std::function<std::optional<LocalResource>(std::string_view path, const LocalRequest& request)> respond{};

  /// Why these pages cannot be served (a scheme the engine keeps, a host that
  /// is no lowercase host name); empty when they can.
  std::string problem() const;
  /// "app://checkout": the whitelist entry that trusts these pages and nothing else.
  std::string origin() const;
  /// The URL of `path` under these pages: "app://checkout/index.html".
  std::string url(std::string_view path = "index.html") const;
  /// The answer to `request`, which these pages serve (see servedBy).
  LocalAnswer answer(const LocalRequest& request) const;
};

/// The pages of `all` that serve `url`: same scheme and exactly the same
/// host, with no user or port. Nothing when none does.
WEBSDK_EXPORT const LocalPages* servedBy(std::span<const LocalPages> all, std::string_view url);

/// Whether the pages of `all` that serve `url` answer a request for it made
/// by the page at `requester` (a URL or an origin: "app://checkout"): only
/// their own pages are, so that no page of another origin can include their
/// scripts, styles or images. The view's own navigations are answered without
/// asking this.
WEBSDK_EXPORT bool servesPageOf(std::span<const LocalPages> all, std::string_view url, std::string_view requester);

/// The answer to a request the pages do not serve to its requester.
WEBSDK_EXPORT LocalAnswer forbidden();

/// The pages of `pages` an engine can serve, in order: a warning names each
/// that cannot, and why (its own problem(), the engine's `engineProblem`, or
/// pages given twice).
WEBSDK_EXPORT std::vector<LocalPages> servablePages(
    std::span<const LocalPages> pages, const std::function<std::string(const LocalPages&)>& engineProblem = {});

}  // namespace websdk
