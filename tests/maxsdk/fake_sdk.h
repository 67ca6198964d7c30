// The stand-in SDK's behaviour for tests of the adapter: scripts and the asset resolver are
// answered by what the test installs here.
#pragma once

// clang-format off
#include <max.h>
#include <iparamb2.h>
#include <triobj.h>
#include <modstack.h>
#include <gencam.h>
#include <stdmat.h>
#include <bitmap.h>
#include <icurvctl.h>
#include <IFileResolutionManager.h>
#include <maxscript/maxscript.h>
// clang-format on

#include <functional>

// Answers a script: whether it ran, filling `result` when one is asked for.
using FakeScriptEngine = std::function<bool(const MCHAR* script, bool quiet, FPValue* result)>;
extern FakeScriptEngine gFakeScripts;
extern IFileResolutionManager* gFakeResolver;
