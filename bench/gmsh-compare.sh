#!/usr/bin/env bash
# Gmsh's 2-D step on the same boundaries as the mesher's benchmark: the
# polylines of each reference profile (from kntr-tool polyline) written as a
# .geo file, the largest curve the exterior and the others its holes, with a
# uniform size for about 1000, 5000 and 10000 triangles. Prints, per profile
# and count, gmsh's own 2-D meshing time, the whole process's time, the
# triangles made and their quality (mean and 5th percentile, the mesher's
# formula), then kntr-tool's figures for the same count.
# Needs gmsh (Debian package gmsh) and a built kntr-tool.
set -euo pipefail
cd "$(dirname "$0")/.."
tool="${KNTR_TOOL:-build/release/app/kntr-tool}"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
command -v gmsh >/dev/null || { echo "gmsh is not installed (apt-get install gmsh)" >&2; exit 1; }

# Count, mean and 5th percentile of qualities, one a line.
summary() {
  sort -g | awk '{ Q[++n] = $1; sum += $1 }
    END { printf "%d triangles, mean %.4f, 5th percentile %.4f", n, sum / n, Q[int(n / 20) + 1] }' |
    tee "$work/summary.txt"
}

for profile in square square-hole spline-lens; do
  "$tool" polyline "data/bench/$profile.kntr" >"$work/poly.txt"
  for count in 1000 5000 10000; do
    awk -v count="$count" '
      $1 == "curve" { c = $2; n[c] = 0; next }
      $1 == "index" { next }
      { n[c]++; x[c, n[c]] = $1; y[c, n[c]] = $2 }
      END {
        total = 0; outer = 0; best = -1
        for (k = 1; k <= c; k++) {
          if (n[k] > 1 && x[k, 1] == x[k, n[k]] && y[k, 1] == y[k, n[k]]) n[k]--
          a = 0
          for (i = 1; i <= n[k]; i++) { j = i % n[k] + 1; a += x[k, i] * y[k, j] - x[k, j] * y[k, i] }
          area[k] = (a < 0 ? -a : a) / 2
          if (area[k] > best) { best = area[k]; outer = k }
        }
        region = area[outer]
        for (k = 1; k <= c; k++) if (k != outer) region -= area[k]
        h = sqrt(4 * region / (sqrt(3) * count))
        printf "Mesh.MeshSizeMin = %.17g;\nMesh.MeshSizeMax = %.17g;\n", h, h
        printf "Mesh.MeshSizeFromPoints = 0;\nMesh.MeshSizeExtendFromBoundary = 0;\n"
        p = 0; l = 0
        for (k = 1; k <= c; k++) {
          first = p + 1
          for (i = 1; i <= n[k]; i++) printf "Point(%d) = {%.17g, %.17g, 0, %.17g};\n", ++p, x[k, i], y[k, i], h
          firstLine = l + 1
          for (i = 1; i <= n[k]; i++) printf "Line(%d) = {%d, %d};\n", ++l, first + i - 1, (i < n[k] ? first + i : first)
          printf "Curve Loop(%d) = {", k
          for (i = firstLine; i <= l; i++) printf "%s%d", (i > firstLine ? ", " : ""), i
          printf "};\n"
        }
        printf "Plane Surface(1) = {%d", outer
        for (k = 1; k <= c; k++) if (k != outer) printf ", %d", k
        printf "};\n"
      }' "$work/poly.txt" >"$work/region.geo"
    start=$(date +%s.%N)
    gmsh -2 -format msh2 -o "$work/region.msh" "$work/region.geo" >"$work/gmsh.log" 2>&1
    end=$(date +%s.%N)
    inner=$(grep -o 'Done meshing 2D (Wall [0-9.e-]*s, CPU [0-9.e-]*s)' "$work/gmsh.log" | head -1)
    figures=$(awk '
      /^\$Nodes/ { mode = 1; getline; next } /^\$EndNodes/ { mode = 0 }
      /^\$Elements/ { mode = 2; getline; next } /^\$EndElements/ { mode = 0 }
      mode == 1 { X[$1] = $2; Y[$1] = $3 }
      mode == 2 && $2 == 2 {
        t = $3; a = $(4 + t); b = $(5 + t); c = $(6 + t)
        p = sqrt((X[b] - X[c]) ^ 2 + (Y[b] - Y[c]) ^ 2); q = sqrt((X[a] - X[c]) ^ 2 + (Y[a] - Y[c]) ^ 2)
        r = sqrt((X[a] - X[b]) ^ 2 + (Y[a] - Y[b]) ^ 2); s = (p + q + r) / 2
        print 8 * (s - p) * (s - q) * (s - r) / (p * q * r)
      }' "$work/region.msh" | summary)
    printf '%-12s %5d gmsh: %s; process %.3f s; %s\n' "$profile" "$count" "$inner" \
      "$(echo "$end - $start" | bc)" "$figures"
    "$tool" mesh "data/bench/$profile.kntr" --triangles "$count" --plain "$work/kntr.txt" >"$work/kntr.out"
    awk 'NR == 1 { nv = $1; nt = $2; next }
      NR <= 1 + nv { X[NR - 1] = $1; Y[NR - 1] = $2; next }
      { a = $1; b = $2; c = $3
        p = sqrt((X[b] - X[c]) ^ 2 + (Y[b] - Y[c]) ^ 2); q = sqrt((X[a] - X[c]) ^ 2 + (Y[a] - Y[c]) ^ 2)
        r = sqrt((X[a] - X[b]) ^ 2 + (Y[a] - Y[b]) ^ 2); s = (p + q + r) / 2
        print 8 * (s - p) * (s - q) * (s - r) / (p * q * r) }' "$work/kntr.txt" | summary >/dev/null
    printf '%-12s %5d kntr: %s\n' "$profile" "$count" "$(cat "$work/summary.txt")"
  done
done
