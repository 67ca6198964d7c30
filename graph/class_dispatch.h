// Identifying materials and maps by their class name: the "type" text and the parameter writer.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/wide_text.h"
#include "graph/param_rows.h"

namespace orvane {

// Leading characters that are not ASCII letters or digits are dropped; a few class names map to
// the converter's fixed vocabulary; any other name is returned as it is.
std::u16string NormalizeClassTypeName(std::u16string_view className, bool isMaterial);

// The writer for a class name (matched lower-cased), or null for an unknown class.
const WriterTable* FindWriterForClass(std::u16string_view className);

// The writer's fragments for the object; empty for an unknown class.
FragmentList WriteParamsForClass(const WriteContext& context, const host::MtlBase& object);

// Every writer the dispatch can reach, in the order it first reaches them.
std::vector<const WriterTable*> AllWriters();

// The reference of every writer, generated from the dispatch and writer tables (Markdown): for
// each writer the class names that reach it and its rows in emission order.
std::string FormatWriterReference();

// The class name without the characters before its first ASCII letter or digit.
std::u16string_view StripLeadingNonAlnum(std::u16string_view className);

}  // namespace orvane
