// The core's text: UTF-16 code units on every platform, converted to UTF-8 only at file and
// network boundaries.
#pragma once

#include <string>
#include <string_view>

namespace orvane {

// Ill-formed input (lone surrogates) becomes U+FFFD.
std::string ToUtf8(std::u16string_view text);
// Ill-formed input becomes U+FFFD, one per maximal ill-formed subpart.
std::u16string FromUtf8(std::string_view bytes);

// Removes leading and trailing blanks, tabs, carriage returns and line feeds.
std::u16string TrimWhitespace(std::u16string_view text);

// For texts that are known to be ASCII (keys, numbers, fixed messages built at run time).
std::u16string AsciiToWide(std::string_view ascii);

}  // namespace orvane
