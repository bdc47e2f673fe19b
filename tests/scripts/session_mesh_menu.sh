# The interior mesh from the manipulation menu: the density keyed in the
# meshing control, then "Export interior mesh" to the finite element file
# and the viewer file; both equal what kntr-tool mesh writes for the same
# profile and settings.
source "$(dirname "$0")/lib.sh"
unset DISPLAY

box=$'1\n0,10\n0,5\n'
closed=$'2\n1\n0,0\n1,1\n1\n6,1\n1\n7,3\n1\n5,4\n1\n3,3\n1\n\nyes\n'
density=$'4\n#item 11\n#item 2\n#item 5\n800\n#item 9\n#item 5\n'
export=$'#item 9\n1\nmenu.fem\n#item 9\n2\nmenu.tvw\n'
# The robust mode with its quality stage turned on (rows 7 and 8), exported.
export+=$'#item 11\n#item 2\n#item 7\n#item 8\n#item 9\n#item 5\n#item 9\n1\nrobust.fem\n#item 12\n'
save=$'8\n2\n\n\n11\n'
run_kntr "demo"$'\nyes\nACME\nme\n'"$box$closed$density$export$save"$'9\nyes\n'
check "exit status 0" test "$status" -eq 0
check "export menu shown" contains out "EXPORT FORMAT SELECTION"
check "finite element file written" test -s menu.fem
check "viewer file written" test -s menu.tvw
"$KNTR_TOOL" mesh demo.KNT --classic --triangles 800 --fem tool.fem --tvew tool.tvw >/dev/null
# the heads carry the date, time, project, company and user: compare the rest
body() { grep -v -E '[0-9]{2}-[A-Za-z]{3}-[0-9]{4}|[0-9]{2}:[0-9]{2}:[0-9]{2}|^\* (PROJECT|COMPANY|USER):' "$1"; }
check "finite element file equals the tool's" cmp -s <(body menu.fem) <(body tool.fem)
check "viewer file equals the tool's" cmp -s <(body menu.tvw) <(body tool.tvw)
"$KNTR_TOOL" mesh demo.KNT --triangles 800 --fem robust-tool.fem >/dev/null
check "robust mesh equals the tool's default" cmp -s <(body robust.fem) <(body robust-tool.fem)
finish
