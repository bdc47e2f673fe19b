# Files for other tools read back by independent readers: gmsh and meshio
# for the mesh files, ezdxf for the drawing, an XML parser for the SVG.
source "$(dirname "$0")/lib.sh"
bench="$KNTR_SOURCE_DIR/data/bench"
# The readers are Debian's packages, for Debian's own Python.
python=/usr/bin/python3
missing=()
command -v gmsh >/dev/null || missing+=(gmsh)
for module in meshio ezdxf; do
  "$python" -c "import $module" 2>/dev/null || missing+=("python3-$module")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "SKIPPED: the readers ${missing[*]} are not installed (scripts/ensure-deps.sh installs them)"
  exit 77
fi

# Meshes of the square, the square with a square hole and the lens
# profile (an outline with a lens-shaped hole), with their numbers of holes.
for case in square:0 square-hole:1 spline-lens:1; do
  profile=${case%:*}
  holes=${case#*:}
  "$KNTR_TOOL" mesh "$bench/$profile.kntr" --triangles 600 --plain plain.txt --msh m.msh \
    --vtk m.vtk --vtu m.vtu --nastran m.bdf >mesh.txt
  check "$profile: mesh exit 0" test $? -eq 0
  nv=$(awk 'NR == 1 { print $1 }' plain.txt)
  nt=$(awk 'NR == 1 { print $2 }' plain.txt)
  # gmsh's own count of nodes and of elements (triangles and boundary lines).
  gmsh m.msh -0 -o again.msh >gmsh.txt 2>&1
  check "$profile: gmsh reads the msh" test $? -eq 0
  # Boundary lines: the blocks of element type 1 in the element section.
  lines=$(awk '/^\$Elements/ { inside = 1; getline; next } /^\$EndElements/ { inside = 0 }
               inside && NF == 4 && $1 == 1 && $3 == 1 { n += $4 } END { print n + 0 }' m.msh)
  check "$profile: gmsh counts $nv nodes" grep -qE "^Info +: $nv nodes$" gmsh.txt
  check "$profile: gmsh counts $((nt + lines)) elements" grep -qE "^Info +: $((nt + lines)) elements$" gmsh.txt
  "$python" - "$nv" "$nt" "$holes" <<'PY' >meshio.txt 2>&1
import sys
import meshio
import numpy as np
nv, nt, holes = int(sys.argv[1]), int(sys.argv[2]), int(sys.argv[3])
with open("plain.txt") as f:
    f.readline()
    xy = np.array([[float(v) for v in f.readline().split()] for _ in range(nv)])
    tri = np.array([[int(v) - 1 for v in f.readline().split()] for _ in range(nt)])
bad = 0
for name in ["m.msh", "m.vtk", "m.vtu", "m.bdf"]:
    mesh = meshio.read(name)
    triangles = np.concatenate([c.data for c in mesh.cells if c.type == "triangle"])
    ok = (len(mesh.points) == nv and len(triangles) == nt
          and np.abs(mesh.points[:, :2] - xy).max() <= 1e-9 * max(1.0, np.abs(xy).max())
          and np.abs(mesh.points[:, 2]).max() == 0.0
          and (triangles == tri).all())
    if name in ("m.vtk", "m.vtu"):
        quality = np.concatenate(mesh.cell_data["quality"])
        ok = ok and len(quality) == nt and quality.min() > 0.0 and quality.max() <= 1.0
    if name == "m.msh":
        groups = mesh.field_data
        ok = ok and "surface" in groups and groups["surface"][1] == 2
        ok = ok and sum(1 for g in groups if g.startswith("outer boundary")) == 1
        ok = ok and sum(1 for g in groups if g.startswith("hole ")) == holes
        # Every boundary line runs along an edge that only one triangle has.
        edges = {}
        for t in tri:
            for a, b in ((t[0], t[1]), (t[1], t[2]), (t[2], t[0])):
                key = (min(a, b), max(a, b))
                edges[key] = edges.get(key, 0) + 1
        boundary = {k for k, n in edges.items() if n == 1}
        lines = np.concatenate([c.data for c in mesh.cells if c.type == "line"])
        ok = ok and {(min(a, b), max(a, b)) for a, b in lines} == boundary
        ok = ok and len(lines) == len(boundary)
    print(name, "ok" if ok else "DIFFERS", len(mesh.points), len(triangles))
    bad += not ok
sys.exit(bad)
PY
  check "$profile: meshio reads msh, vtk, vtu and the Nastran deck alike" test $? -eq 0
  cat meshio.txt
done
finish
