#include "websdk/webview/LocalPages.hpp"

#include "../Text.hpp"

#include "websdk/Log.hpp"

#include <algorithm>
#include <array>
#include <filesystem>

namespace websdk {
namespace {

constexpr std::string_view kText = "text/plain; charset=utf-8";

constexpr char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c; }

// A URL's parts as far as local pages need them: scheme, authority and what
// follows it (path, query, fragment). Nothing for a URL without an authority.
struct Parts {
  std::string_view scheme, authority, target;
};

std::optional<Parts> partsOf(std::string_view url) {
  const auto colon = url.find(':');
  if (colon == std::string_view::npos || url.substr(colon + 1, 2) != "//") return std::nullopt;
  const std::string_view rest = url.substr(colon + 3);
  const auto end = std::min(rest.find_first_of("/?#"), rest.size());
  return Parts{url.substr(0, colon), rest.substr(0, end), rest.substr(end)};
}

LocalAnswer refusal(int status, std::string_view why) {
  return LocalAnswer{status, std::string(kText), std::string(why), ""};
}

// The file `relative` names under `folder`, once every link on the way is
// followed: a link that leads out of the folder serves nothing.
LocalAnswer fromFolder(const std::string& folder, const std::string& relative) {
  namespace fs = std::filesystem;
  std::error_code error;
  const fs::path root = fs::canonical(folder, error);
  if (error) return refusal(404, "not found");
  const fs::path target = fs::canonical(root / relative, error);
  if (error || !fs::is_regular_file(target, error)) return refusal(404, "not found");
  if (std::mismatch(root.begin(), root.end(), target.begin(), target.end()).first != root.end())
    return refusal(403, "forbidden");
  return LocalAnswer{200, mimeTypeFor(relative), "", target.string()};
}

bool isHostName(std::string_view host) {
  if (host.empty() || host.front() == '.' || host.back() == '.' || host.find("..") != std::string_view::npos)
    return false;
  return std::ranges::all_of(
      host, [](char c) { return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '.'; });
}

}  // namespace

std::optional<std::string> localPath(std::string_view target) {
  target = target.substr(0, target.find_first_of("?#"));
  std::string path;
  bool directory = true;  // the path names a folder: its index.html is meant
  std::size_t start = 0;
  while (start <= target.size()) {
    const auto slash = std::min(target.find('/', start), target.size());
    const std::string_view raw = target.substr(start, slash - start);
    start = slash + 1;
    const std::string segment = percentDecoded(raw);
    // A segment that decodes to a separator or to NUL would reach another
    // file than the one the URL names.
    if (segment == ".." || segment.find_first_of(std::string_view("/\\\0", 3)) != std::string::npos)
      return std::nullopt;
    directory = segment.empty() || segment == ".";
    if (directory) continue;
    if (!path.empty()) path += '/';
    path += segment;
  }
  if (directory) path += path.empty() ? "index.html" : "/index.html";
  return path;
}

std::string mimeTypeFor(std::string_view path) {
  static constexpr std::array<std::pair<std::string_view, std::string_view>, 18> kTypes{{
      {"html", "text/html; charset=utf-8"},
      {"htm", "text/html; charset=utf-8"},
      {"js", "text/javascript; charset=utf-8"},
      {"mjs", "text/javascript; charset=utf-8"},
      {"css", "text/css; charset=utf-8"},
      {"json", "application/json"},
      {"map", "application/json"},
      {"txt", "text/plain; charset=utf-8"},
      {"svg", "image/svg+xml"},
      {"png", "image/png"},
      {"jpg", "image/jpeg"},
      {"jpeg", "image/jpeg"},
      {"gif", "image/gif"},
      {"webp", "image/webp"},
      {"ico", "image/x-icon"},
      {"woff", "font/woff"},
      {"woff2", "font/woff2"},
      {"wasm", "application/wasm"},
  }};
  const std::string_view name = path.substr(path.rfind('/') + 1);
  const auto dot = name.rfind('.');
  if (dot == std::string_view::npos) return "application/octet-stream";
  std::string extension(name.substr(dot + 1));
  std::ranges::transform(extension, extension.begin(), lower);
  for (const auto& [ext, type] : kTypes)
    if (ext == extension) return std::string(type);
  return "application/octet-stream";
}

std::string LocalPages::problem() const {
  // Schemes the web or the engine already gives a meaning to.
  static constexpr std::array<std::string_view, 12> kTaken{
      "about", "blob", "data", "file", "filesystem", "ftp", "http", "https", "javascript", "resource", "ws", "wss"};
  const bool schemeSyntax =
      !scheme.empty() && scheme.front() >= 'a' && scheme.front() <= 'z' && std::ranges::all_of(scheme, [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
      });
  if (!schemeSyntax) return "the scheme \"" + scheme + "\" is not a lowercase URL scheme";
  if (std::ranges::find(kTaken, scheme) != kTaken.end() || scheme.starts_with("webkit"))
    return "the scheme \"" + scheme + "\" is the engine's own";
  if (!isHostName(host)) return "the host \"" + host + "\" is not a lowercase host name";
  return {};
}

std::string LocalPages::origin() const { return scheme + "://" + host; }

std::string LocalPages::url(std::string_view path) const {
  if (path.starts_with('/')) path.remove_prefix(1);
  return origin() + "/" + std::string(path);
}

LocalAnswer LocalPages::answer(const LocalRequest& request) const {
  if (servedBy(std::span(this, 1), request.url) == nullptr) return refusal(404, "not found");
  if (request.method != "GET" && request.method != "HEAD") return refusal(405, "method not allowed");
  const auto path = localPath(partsOf(request.url)->target);
  if (!path) return refusal(403, "forbidden");
  std::optional<LocalResource> found;
  if (respond) found = respond(*path, request);
  if (!found) {
    auto it = resources.find(*path);
    if (it == resources.end()) it = resources.find("/" + *path);
    if (it != resources.end()) found = it->second;
  }
  LocalAnswer answer;
  if (found) {
    answer =
        LocalAnswer{200, found->mimeType.empty() ? mimeTypeFor(*path) : found->mimeType, std::move(found->bytes), ""};
  } else if (!folder.empty()) {
    answer = fromFolder(folder, *path);
  } else {
    return refusal(404, "not found");
  }
  if (request.method == "HEAD" && answer.status == 200) {
    answer.bytes.clear();
    answer.file.clear();
  }
  return answer;
}

const LocalPages* servedBy(std::span<const LocalPages> all, std::string_view url) {
  const auto parts = partsOf(url);
  if (!parts) return nullptr;
  for (const auto& pages : all) {
    const bool sameScheme =
        std::ranges::equal(parts->scheme, pages.scheme, [](char a, char b) { return lower(a) == b; });
    if (sameScheme && parts->authority == pages.host && pages.problem().empty()) return &pages;
  }
  return nullptr;
}

bool servesPageOf(std::span<const LocalPages> all, std::string_view url, std::string_view requester) {
  const LocalPages* pages = servedBy(all, url);
  return pages != nullptr && servedBy(all, requester) == pages;
}

LocalAnswer forbidden() { return refusal(403, "forbidden"); }

std::vector<LocalPages> servablePages(std::span<const LocalPages> pages,
                                      const std::function<std::string(const LocalPages&)>& engineProblem) {
  std::vector<LocalPages> served;
  for (const auto& page : pages) {
    std::string problem = page.problem();
    if (problem.empty() && engineProblem) problem = engineProblem(page);
    if (!problem.empty()) {
      log(LogLevel::warning, "engine", "the local pages " + page.origin() + " are not served: " + problem);
    } else if (servedBy(served, page.url()) != nullptr) {
      log(LogLevel::warning, "engine", "the local pages " + page.origin() + " are given twice: the first are served");
    } else {
      served.push_back(page);
    }
  }
  return served;
}

}  // namespace websdk
