#include "package/numeric_locale_guard.h"

#include <clocale>

namespace orvane {

NumericLocaleGuard::NumericLocaleGuard()
    // The runtime's answer points into storage the next setlocale may reuse: keep a copy.
    : previousRuntimeLocale_(std::setlocale(LC_ALL, nullptr)),
      previousStreamLocale_(std::locale::global(std::locale::classic())) {
  std::setlocale(LC_ALL, "C");
}

NumericLocaleGuard::~NumericLocaleGuard() {
  std::locale::global(previousStreamLocale_);
  // locale::global also sets the C locale when the stream locale has a name; the runtime's
  // own previous setting is restored last so that it wins.
  std::setlocale(LC_ALL, previousRuntimeLocale_.c_str());
}

}  // namespace orvane
