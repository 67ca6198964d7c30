#include "service/redirect.h"

#include "base/wide_text.h"

namespace orvane {

std::optional<Redirect> FollowRedirect(int status, const ParsedUrl& from,
                                       std::u16string_view method, std::u16string_view location) {
  bool keepsMethod = status == 307 || status == 308;
  if (!keepsMethod && status != 301 && status != 302 && status != 303) return std::nullopt;
  std::optional<ParsedUrl> target = ParseUrl(location);
  if (!target || !ResolvePort(*target) || (from.secure && !target->secure)) return std::nullopt;

  Redirect redirect;
  redirect.target = *target;
  bool becomesGet = !keepsMethod && (status == 303 ? method != u"HEAD" : method == u"POST");
  redirect.method = becomesGet ? u"GET" : std::u16string(method);
  redirect.keepsBody = keepsMethod;
  redirect.keepsCredentials =
      LowerAscii(target->host) == LowerAscii(from.host) && target->port == from.port;
  return redirect;
}

namespace {

bool IsHeaderLine(std::u16string_view line, std::u16string_view name) {
  return line.size() > name.size() && line.substr(0, name.size()) == name &&
         line[name.size()] == u':';
}

}  // namespace

void StripForRedirect(const Redirect& next, std::vector<std::u16string>& headerLines,
                      const std::string*& body) {
  if (!next.keepsBody) {
    body = nullptr;
    std::erase_if(headerLines,
                  [](const auto& line) { return IsHeaderLine(line, u"Content-Type"); });
  }
  if (!next.keepsCredentials) {
    std::erase_if(headerLines,
                  [](const auto& line) { return IsHeaderLine(line, u"Authorization"); });
  }
}

}  // namespace orvane
