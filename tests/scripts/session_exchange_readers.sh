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

# Drawings of the lens profile (splines) and the square with a hole
# (polylines): every curve's points as the polyline command gives them.
for profile in spline-lens square-hole; do
  "$KNTR_TOOL" polyline "$bench/$profile.kntr" >poly.txt
  "$KNTR_TOOL" export "$bench/$profile.kntr" --dxf p.dxf
  check "$profile: export --dxf exit 0" test $? -eq 0
  "$KNTR_TOOL" export "$bench/$profile.kntr" --svg p.svg
  check "$profile: export --svg exit 0" test $? -eq 0
  "$python" - <<'PY' >drawing.txt 2>&1
import sys
import xml.etree.ElementTree as ET
import ezdxf

# The polylines: "curve C N", N lines "x y", "index ...".
curves, offsets = [], []
with open("poly.txt") as f:
    lines = f.read().split("\n")
k = 0
while k < len(lines) and lines[k].startswith("curve"):
    n = int(lines[k].split()[2])
    curves.append([tuple(map(float, lines[k + 1 + i].split())) for i in range(n)])
    index = [int(i) for i in lines[k + 1 + n].split()[1:]]
    offsets.append([curves[-1][i - 1] for i in index])
    k += n + 2

def close(a, b):
    return len(a) == len(b) and all(abs(p[0] - q[0]) <= 1e-9 and abs(p[1] - q[1]) <= 1e-9
                                    for p, q in zip(a, b))

bad = 0
doc = ezdxf.readfile("p.dxf")
print("dxf version", doc.dxfversion)
bad += doc.dxfversion != "AC1009"
polylines = [e for e in doc.modelspace() if e.dxftype() == "POLYLINE"]
bad += len(polylines) != len(curves)
for c, (entity, points) in enumerate(zip(polylines, curves), start=1):
    fitted = entity.dxf.flags & 4
    # Fitted vertices (flag 8) carry the curve; a plain polyline has all its vertices on it.
    on_curve = [(v.dxf.location[0], v.dxf.location[1]) for v in entity.vertices
                if (v.dxf.flags & 8 if fitted else True)]
    frame = [(v.dxf.location[0], v.dxf.location[1]) for v in entity.vertices if v.dxf.flags & 16]
    ok = entity.dxf.layer == f"CURVE{c}" and close(on_curve, points)
    # The frame of a spline-fit polyline is the curve's offset points.
    ok = ok and (close(frame, offsets[c - 1]) if fitted else not frame)
    print("dxf curve", c, "layer", entity.dxf.layer, "fitted", bool(fitted), "ok" if ok else "DIFFERS")
    bad += not ok

ns = {"svg": "http://www.w3.org/2000/svg"}
root = ET.parse("p.svg").getroot()
paths = root.findall(".//svg:path", ns)
bad += len(paths) != len(curves)
for c, (path, points) in enumerate(zip(paths, curves), start=1):
    words = path.get("d").replace("M", " ").replace("L", " ").replace("Z", " ").split()
    values = list(map(float, words))
    got = list(zip(values[0::2], values[1::2]))
    ok = path.get("id") == f"curve{c}" and close(got, points)
    print("svg path", c, "ok" if ok else "DIFFERS")
    bad += not ok
sys.exit(bad)
PY
  check "$profile: ezdxf and the XML parser read every curve's points within 1e-9" test $? -eq 0
  cat drawing.txt
done

# An offset table into a new profile, its section properties, and a table
# with a bad row, which writes nothing.
printf 'curve,x,y,type\nouter,0,0,2\nouter,8,0,2\nouter,8,5,2\nouter,0,5,2\nouter,0,0\nhole,5,3,2\nhole,5,4,2\nhole,7,4,2\nhole,7,3,2\nhole,5,3\n' >table.csv
"$KNTR_TOOL" import table.csv --box -1,9,-1,6 --ref 1,2 --polyline -o table.kntr >import.txt
check "import exit 0" test $? -eq 0
check "import summary" grep -qx 'curves 2 4c 4c' import.txt
"$KNTR_TOOL" props table.kntr >props.txt
check "props exit 0" test $? -eq 0
check "props names in order" test "$(awk '{ printf "%s ", $1 }' props.txt)" = "area xc yc ixx iyy ixy sx sy "
awk '{ v[$1] = $2 } END {
  xc = (40 * 4 - 2 * 6) / 38; yc = (40 * 2.5 - 2 * 3.5) / 38
  want["area"] = 38; want["xc"] = xc; want["yc"] = yc
  want["ixx"] = 8 * 125 / 12 + 40 * (2.5 - yc) ^ 2 - (2 / 12 + 2 * (3.5 - yc) ^ 2)
  want["iyy"] = 512 * 5 / 12 + 40 * (4 - xc) ^ 2 - (8 / 12 + 2 * (6 - xc) ^ 2)
  want["ixy"] = 40 * (4 - xc) * (2.5 - yc) - 2 * (6 - xc) * (3.5 - yc)
  want["sx"] = 40 * 0.5 - 2 * 1.5; want["sy"] = 40 * 3 - 2 * 5
  for (k in want) { d = v[k] - want[k]; if (d < 0) d = -d; if (d > 1e-9 * 1000) { print k, v[k], want[k]; bad = 1 } }
  exit bad }' props.txt
check "props of the rectangle with a hole" test $? -eq 0
printf 'a,0,0\na,1,1\na,2,text\n' >bad.csv
"$KNTR_TOOL" import bad.csv -o bad.kntr 2>err.txt
check "bad table exit 1" test $? -eq 1
check "bad table names its row" grep -qF 'Row 3 of "bad.csv": "text" is not a number!' err.txt
check "bad table writes nothing" test ! -e bad.kntr
"$KNTR_TOOL" export "$bench/square.kntr" --pdf x 2>/dev/null
check "export usage exit 2" test $? -eq 2
finish
