// The reply's integer member reader on any text: answers found only where the quoted key stands,
// and agrees with itself whatever follows the number.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "base/wide_text.h"
#include "service/account_status.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace orvane;
  std::u16string text = FromUtf8(std::string(reinterpret_cast<const char*>(data), size));
  for (const char16_t* key : {u"balance", u"daily_limit", u"conversions_left", u""}) {
    int32_t value = 0;
    bool found = ReadIntegerMember(text, key, value);
    std::u16string quoted = u"\"" + std::u16string(key) + u"\"";
    if (found && text.find(quoted) == std::u16string::npos) std::abort();
    int32_t again = 0;
    if (found && (!ReadIntegerMember(text + u"}", key, again) || again != value)) std::abort();
  }
  return 0;
}
