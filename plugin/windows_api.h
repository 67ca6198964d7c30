// <windows.h> for code that also sees the host interface. Windows defines CopyFile, DeleteFile,
// CreateDirectory and GetClassName as macros for their wide versions, which would rename the
// host's own functions of those names in every file that includes both; the wide versions are
// always called by their full names here.
#pragma once

#include <windows.h>

#undef CopyFile
#undef CreateDirectory
#undef DeleteFile
#undef GetClassName
