// Test-only stand-in for the SDK header of the same name (see README.md).
#pragma once

#include "max.h"

class BitmapStorage {
 public:
  float Gamma() const;
};

class Bitmap {
 public:
  BitmapStorage* Storage();
};
