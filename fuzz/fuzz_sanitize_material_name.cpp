// Material-name sanitising of any UTF-16 text: at most 56 code units, only kept characters, no
// runs of "_", no trailing "_", and sanitising its own output changes nothing.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "prep/material_names.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::u16string name(size / 2, u'\0');
  for (size_t i = 0; i < name.size(); ++i) {
    name[i] = static_cast<char16_t>(data[2 * i] | (data[2 * i + 1] << 8));
  }
  std::u16string safe = orvane::SanitizeMaterialName(name);
  if (safe.size() > 56) std::abort();
  for (char16_t c : safe) {
    bool kept = (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') ||
                c == u'-' || c == u'_';
    if (!kept) std::abort();
  }
  if (safe.find(u"__") != std::u16string::npos) std::abort();
  if (!safe.empty() && safe.back() == u'_') std::abort();
  if (orvane::SanitizeMaterialName(safe) != safe) std::abort();
  return 0;
}
