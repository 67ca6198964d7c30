#include "service/account_status.h"

#include "base/leading_int.h"
#include "base/wide_text.h"

namespace orvane {

namespace {

size_t SkipBlanks(std::u16string_view text, size_t at) {
  while (at < text.size() && (text[at] == u' ' || text[at] == u'\t'))
    ++at;
  return at;
}

bool IsDigit(char16_t c) {
  return c >= u'0' && c <= u'9';
}

bool Contains(std::u16string_view text, std::u16string_view part) {
  return text.find(part) != std::u16string_view::npos;
}

}  // namespace

bool ReadIntegerMember(std::u16string_view text, std::u16string_view key, int32_t& value) {
  std::u16string quoted = u"\"" + std::u16string(key) + u"\"";
  size_t at = text.find(quoted);
  if (at == std::u16string_view::npos) return false;
  at = SkipBlanks(text, at + quoted.size());
  if (at >= text.size() || text[at] != u':') return false;
  at = SkipBlanks(text, at + 1);
  size_t numberStart = at;
  if (at < text.size() && (text[at] == u'-' || text[at] == u'+')) ++at;
  if (at >= text.size() || !IsDigit(text[at])) return false;
  while (at < text.size() && IsDigit(text[at]))
    ++at;
  value = ParseLeadingInt(text.substr(numberStart, at - numberStart));
  return true;
}

AccountStatus QueryAccountStatus(HttpClient& client, std::u16string_view baseUrl,
                                 std::u16string_view token) {
  AccountStatus status;
  if (token.empty()) {
    status.error = u"token_empty";
    return status;
  }
  std::u16string url = std::u16string(baseUrl) + std::u16string(kBalancePath);
  HttpResult reply = PerformRequest(client, url, u"GET", token, nullptr, {});
  // The service's own words decide before the status does: a refused token must not read as a
  // connection problem.
  if (Contains(reply.text, u"invalid token") || Contains(reply.text, u"missing or invalid")) {
    status.error = u"invalid_token";
    return status;
  }
  if (!reply.ok) {
    status.error = !reply.text.empty() ? reply.text : u"http_" + Decimal(reply.status);
    return status;
  }
  ReadIntegerMember(reply.text, u"balance", status.balance);
  ReadIntegerMember(reply.text, u"daily_limit", status.dailyLimit);
  ReadIntegerMember(reply.text, u"conversions_left", status.conversionsLeft);
  status.ok = true;
  return status;
}

std::u16string BalanceText(const AccountStatus& status) {
  if (status.dailyLimit == 0) return u"Unlimited conversions";
  if (status.dailyLimit < 0 || status.conversionsLeft < 0) return {};
  if (status.conversionsLeft == 0)
    return u"Daily limit reached (" + Decimal(status.dailyLimit) + u"/day)";
  return Decimal(status.conversionsLeft) + u" of " + Decimal(status.dailyLimit) +
         u" conversions left today";
}

}  // namespace orvane
