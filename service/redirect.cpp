#include "service/redirect.h"

namespace orvane {

namespace {

bool SameAsciiFolded(std::u16string_view a, std::u16string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    auto fold = [](char16_t c) { return c >= u'A' && c <= u'Z' ? char16_t(c + 32) : c; };
    if (fold(a[i]) != fold(b[i])) return false;
  }
  return true;
}

}  // namespace

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
  redirect.keepsCredentials = SameAsciiFolded(target->host, from.host) && target->port == from.port;
  return redirect;
}

}  // namespace orvane
