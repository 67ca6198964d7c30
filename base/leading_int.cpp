#include "base/leading_int.h"

#include <limits>

namespace orvane {

int32_t ParseLeadingInt(std::u16string_view text) {
  size_t i = 0;
  while (i < text.size() && (text[i] == u' ' || (text[i] >= u'\t' && text[i] <= u'\r')))
    ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == u'+' || text[i] == u'-')) negative = text[i++] == u'-';
  constexpr int64_t kLimit = int64_t{std::numeric_limits<int32_t>::max()} + 1;
  int64_t value = 0;
  for (; i < text.size() && text[i] >= u'0' && text[i] <= u'9'; ++i) {
    value = value * 10 + (text[i] - u'0');
    if (value > kLimit) value = kLimit;  // saturated; the rest of the digits cannot lower it
  }
  if (negative) return static_cast<int32_t>(-value);
  return value >= kLimit ? std::numeric_limits<int32_t>::max() : static_cast<int32_t>(value);
}

}  // namespace orvane
