// The core's text: UTF-16 code units on every platform, converted to UTF-8 only at file and
// network boundaries.
#pragma once

#include <concepts>
#include <optional>
#include <string>
#include <string_view>

namespace orvane {

// Ill-formed input (lone surrogates) becomes U+FFFD.
std::string ToUtf8(std::u16string_view text);
// The same, appended: text written piece by piece goes out without a wide copy of the whole.
void AppendUtf8(std::string& out, std::u16string_view text);
// Ill-formed input becomes U+FFFD, one per maximal ill-formed subpart.
std::u16string FromUtf8(std::string_view bytes);

// Nullopt when the bytes are not well-formed UTF-8.
std::optional<std::u16string> FromUtf8Strict(std::string_view bytes);
// The system's ANSI code page on Windows; elsewhere Windows-1252, the code page of the Western
// European Windows installations the files most often come from.
std::u16string FromAnsiCodePage(std::string_view bytes);

// Removes leading and trailing blanks, tabs, carriage returns and line feeds.
std::u16string TrimWhitespace(std::u16string_view text);

// ASCII letters lower-cased, nothing else: the result does not depend on the process locale.
std::u16string LowerAscii(std::u16string_view text);

// For texts that are known to be ASCII (keys, numbers, fixed messages built at run time).
std::u16string AsciiToWide(std::string_view ascii);

#ifdef _WIN32
// The text as Windows' wide functions take it: wchar_t is UTF-16 there, as char16_t is.
inline std::wstring ToWindowsText(std::u16string_view text) {
  return std::wstring(text.begin(), text.end());
}
inline std::u16string FromWindowsText(std::wstring_view text) {
  return std::u16string(text.begin(), text.end());
}
#endif

// Plain decimal, as numbers stand in the system's texts.
template <std::integral Number>
std::u16string Decimal(Number value) {
  return AsciiToWide(std::to_string(value));
}

}  // namespace orvane
