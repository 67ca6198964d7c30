// Test-only stand-in for the SDK header of the same name (see README.md).
#pragma once

#include "max.h"

extern Class_ID triObjectClassID;

class TriObject : public Object {
 public:
  Mesh mesh;
  Mesh& GetMesh() { return mesh; }
};
