// JSON text built by concatenation: value formatting, string escaping and fragment lists.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/host_types.h"

namespace orvane {

// An ordered list of complete JSON members, each `"key":value` with no surrounding blanks.
using FragmentList = std::vector<std::u16string>;

std::u16string FormatJsonBool(bool value);

// Six significant digits in general notation, exactly as a classic-locale stream writes a
// float, whatever the process locale; "null" for infinities and NaN.
std::u16string FormatJsonNumber(float value);
void AppendJsonNumber(std::u16string& out, float value);

// "[r,g,b]", unscaled and unclamped.
std::u16string FormatJsonColor(const host::Color& color);
// "[x,y,z]".
std::u16string FormatJsonPoint3(const host::Point3& point);
// "[w,x,y,z]": the scalar part first.
std::u16string FormatJsonQuat(const host::Quat& quat);

// The body of a JSON string (no enclosing quotes). Only control characters, the double quote
// and the backslash are escaped; everything else, the slash and non-ASCII included, is copied.
std::u16string EscapeJsonString(std::u16string_view text);
// The same body appended as UTF-8.
void AppendEscapedJsonUtf8(std::string& out, std::u16string_view text);

// Each fragment prefixed with `indent`, separated by ",\n", no separator after the last.
std::u16string JoinFragments(const FragmentList& fragments, std::u16string_view indent);

}  // namespace orvane
