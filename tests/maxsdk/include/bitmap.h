// Test-only stand-in for the SDK header of the same name (see README.md).
#pragma once

#include "max.h"

class BitmapStorage {
 public:
  float Gamma() const;
  float gamma = 1;  // the stand-in's own storage
};

class Bitmap {
 public:
  BitmapStorage* Storage();
  BitmapStorage storage;  // the stand-in's own storage
};
