"""Imports an FBX file into an empty Blender scene and checks it against expectations.

Run as: blender -b --factory-startup --python-exit-code 1 --python tools/blender_fbx_check.py \
            -- FILE.fbx EXPECTED.json
Without EXPECTED.json it prints what it found, as JSON in the expectations' own form.

EXPECTED.json: {"objects": {name: {"parent": name or null, "materials": [names],
                                   "type": "MESH" or "EMPTY",
                                   "location": [x, y, z] in metres (optional),
                                   "rotation": [x, y, z] world Euler degrees (optional),
                                   "colors": [[r, g, b], ...] per face corner (optional)}}}
Colours are compared as stored in the file (sRGB), to 1/255; locations to 0.1 mm, rotations to
0.01 degrees.
"""
import json
import math
import sys

import bpy

args = sys.argv[sys.argv.index("--") + 1:]
fbx_path = args[0]
expected_path = args[1] if len(args) > 1 else None

bpy.ops.wm.read_factory_settings(use_empty=True)
result = bpy.ops.import_scene.fbx(filepath=fbx_path)
if result != {"FINISHED"}:
    raise SystemExit("import failed: %r" % (result,))


def corner_colors(obj):
    mesh = obj.data
    if not mesh.color_attributes:
        return None
    layer = mesh.color_attributes[0]
    return [[round(c, 4) for c in item.color_srgb[:3]] for item in layer.data]


found = {}
for obj in bpy.data.objects:
    entry = {
        "parent": obj.parent.name if obj.parent else None,
        "type": obj.type,
        "materials": [slot.material.name for slot in obj.material_slots if slot.material],
    }
    world = obj.matrix_world
    entry["location"] = [round(v, 5) for v in world.to_translation()]
    entry["rotation"] = [round(math.degrees(a), 3) for a in world.to_euler()]
    if obj.type == "MESH":
        colors = corner_colors(obj)
        if colors is not None:
            entry["colors"] = colors
    found[obj.name] = entry

if expected_path is None:
    print(json.dumps({"objects": found}, indent=2, sort_keys=True))
    raise SystemExit(0)

with open(expected_path, encoding="utf-8") as f:
    expected = json.load(f)["objects"]

faults = []
if sorted(found) != sorted(expected):
    faults.append("objects: found %s, expected %s" % (sorted(found), sorted(expected)))
for name, want in expected.items():
    got = found.get(name)
    if got is None:
        continue
    for key in ("parent", "type", "materials"):
        if got[key] != want[key]:
            faults.append("%s.%s: found %r, expected %r" % (name, key, got[key], want[key]))
    for key, tolerance in (("location", 1e-4), ("rotation", 1e-2)):
        if key in want and any(abs(a - b) > tolerance for a, b in zip(got[key], want[key])):
            faults.append("%s.%s: found %r, expected %r" % (name, key, got[key], want[key]))
    if "colors" in want:
        have = got.get("colors")
        if have is None or len(have) != len(want["colors"]) or any(
                abs(a - b) > 1.0 / 255 for h, w in zip(have, want["colors"]) for a, b in zip(h, w)):
            faults.append("%s.colors: found %r, expected %r" % (name, have, want["colors"]))

if faults:
    print("\n".join(faults))
    raise SystemExit(1)
print("%s: %d objects as expected" % (fbx_path, len(expected)))
