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

}  // namespace orvane
