// The account behind a token: whether the token is good, and the daily conversion quota.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "service/http.h"

namespace orvane {

inline constexpr std::u16string_view kBalancePath = u"/api/balance";

struct AccountStatus {
  bool ok = false;
  int32_t balance = 0;      // read, never shown
  int32_t dailyLimit = -1;  // 0 means unlimited
  int32_t conversionsLeft = -1;
  // "token_empty", "invalid_token", the service's or transport's text, or "http_" + status.
  std::u16string error;
};

// Never throws. An empty token is answered without a request.
AccountStatus QueryAccountStatus(HttpClient& client, std::u16string_view baseUrl,
                                 std::u16string_view token);

// The one line the panel shows for the quota; empty when the quota is unknown.
std::u16string BalanceText(const AccountStatus& status);

// The integer after the first occurrence of "key" (quoted) anywhere in the text, nesting
// ignored: blanks or tabs, a colon, blanks or tabs, an optional sign and digits. False when any of
// these is missing.
bool ReadIntegerMember(std::u16string_view text, std::u16string_view key, int32_t& value);

}  // namespace orvane
