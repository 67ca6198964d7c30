// Test-only stand-in for the SDK header of the same name (see README.md).
#pragma once

#include "max.h"

class GenCamera : public CameraObject {};
