// Writers of the main material classes: Corona, V-Ray, Physical and the standard material.
#pragma once

#include "graph/param_rows.h"

namespace orvane {

extern const WriterTable kCoronaMtlWriter;
extern const WriterTable kVRayMtlWriter;
extern const WriterTable kPhysicalMtlWriter;
extern const WriterTable kStandardMtlWriter;

// An index of refraction from a reflectivity value: 1 for r <= 0; otherwise, with
// s = sqrt(min(12.4, r) * 0.08), (1 + s) / (1 - s).
float ReflectivityToIor(float reflectivity);

}  // namespace orvane
