// Test-only stand-in for the SDK header of the same name (see README.md).
#pragma once

#include "../iparamb2.h"

#define TYPE_TSTR 57
#define TYPE_TSTR_BR 0x1039
#define TYPE_TSTR_BV 0x2039

class FPValue {
 public:
  FPValue();
  ~FPValue();
  ParamType2 type;
  union {
    const MCHAR* s;
    MSTR* tstr;
  };
};

namespace MAXScript {
enum class ScriptSource : int { NotSpecified, Embedded, NonEmbedded, Dynamic };
}  // namespace MAXScript

BOOL ExecuteMAXScriptScript(const MCHAR* s, MAXScript::ScriptSource scriptSource,
                            BOOL quietErrors = FALSE, FPValue* fpv = nullptr,
                            BOOL logQuietErrors = TRUE);
