# The controls of "DISPLAY OPTIONS" in the headless window: the interior
# mesh turned on and coloured by quality, its density and quality keyed in
# at and past their limits, the spline display toggled and its accuracy
# set, and the curvature comb; each change shows in the picture.
pictures="$(cd "$(dirname "$0")" && pwd)/pictures.py"
source "$(dirname "$0")/lib.sh"
unset DISPLAY

box=$'1\n0,10\n0,5\n'
closed=$'2\n1\n0,0\n1,1\n2\n3,1\n1\n4,3\n1\n2,4\n1\n1,3\n1\n\nyes\n'
# Display options (item 11), meshing control (2): mesh on, density 10001
# refused then 10000 taken, quality 1.5 refused then 1 taken, colours on.
mesh=$'4\n#picture plain.png\n#item 11\n#item 2\n#item 1\n#picture mesh.png\n'
mesh+=$'#item 5\n10001\n\n10000\n#item 5\n400\n#item 4\n#item 6\n1.5\n\n1\n#item 8\n'
mesh+=$'#item 6\n#picture quality.png\n#item 1\n#item 9\n'
# Spline control (1): interpolated points three times, accuracy -1 refused
# then 0 taken, reset; display control (3): the comb.
spline=$'#item 1\n#item 1\n#item 1\n#item 1\n#picture marks.png\n#item 4\n-1\n\n0.02\n#item 5\n#item 6\n'
spline+=$'#item 3\n#picture nocomb.png\n#item 2\n#picture comb.png\n#item 2\n#item 4\n#item 5\n#item 12\n'
run_kntr "demo"$'\nyes\nACME\nme\n'"$box$closed$mesh$spline"$'9\nyes\n'
check "exit status 0" test "$status" -eq 0
check "meshing control menu" contains out "INTERIOR MESHING CONTROL"
check "density over the limit refused" contains out "Number of triangles exceeds max allowed!"
check "quality out of range refused" contains out "Meshing quality must be in the range (0..1)!"
check "negative accuracy refused" contains out "Spline curve length accuracy must be positive!"
check "spline control menu" contains out "CURVE SPLINE CONTROL"
check "quality menu" contains out "SETUP OF MESHING QUALITY"
check "nothing left unbuilt" test "$(grep -c 'Not implemented' out)" -eq 0
plain=$(python3 "$pictures" count plain.png yellow)
meshed=$(python3 "$pictures" count mesh.png yellow)
check "the mesh shows ($plain -> $meshed yellow pixels)" test "$meshed" -gt $((plain + 2000))
check "quality colours fill the triangles" test "$(python3 "$pictures" count quality.png blue)" -gt 5000
check "no quality colours without the setting" test "$(python3 "$pictures" count mesh.png blue)" -lt 100
cyan=$(python3 "$pictures" count plain.png cyan)
check "interpolated points turned on by three toggles" test "$(python3 "$pictures" count marks.png cyan)" -gt $((cyan + 200))
before=$(python3 "$pictures" count nocomb.png orange)
after=$(python3 "$pictures" count comb.png orange)
check "the comb shows after its toggle ($before -> $after orange pixels)" test "$after" -gt $((before + 300))
finish
