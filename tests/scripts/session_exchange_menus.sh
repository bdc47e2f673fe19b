# The exchange rows of the file menu in a real session: an offset table
# imported into a new polyline profile, the section properties turned on for
# the printout, the profile drawn to DXF, and the printout with its section
# page.
source "$(dirname "$0")/lib.sh"

printf 'curve,x,y\nouter,0,0\nouter,8,0\nouter,8,5\nouter,0,5\nouter,0,0\nhole,5,3\nhole,5,4\nhole,7,4\nhole,7,3\nhole,5,3\n' >table.csv
# File menu: import (table, X and Y of the box, reference point, polyline
# profile, RETURN under the outline), the section page on, DXF, back.
file=$'8\n9\ntable.csv\n-1,9\n-1,6\n1,2\n2\n\n10\n7\nmenu.dxf\n11\n'
# Print on the screen: RETURN under the outline, the section page, the table.
print=$'5\n1\n\n\n\n'
run_kntr "demo"$'\nyes\nACME\nme\n'"$file$print"$'9\nyes\n'
check "exit status 0" test "$status" -eq 0
check "every answer taken" bash -c "! grep -qE 'undefined constant|Input must be|Wrong number' out"
check "rows of the file menu" contains out "9.  ... Import offset table"
check "table loaded" contains out 'Loading offset table from "table.csv"'
check "outline after the import" contains out "Number of curves .................................. :    2"
check "setting shown on" contains out "Section properties in printout ON/off"
check "drawing written" grep -qx 'AC1009' menu.dxf
check "section page in the printout" contains out "Section properties"
check "area of the rectangle with its hole" contains out "Area ............................................. :  3.80000E+01 [m2]"
check "product moment" contains out "Product moment about centroid .................... : -4.21053E+00 [m4]"
check "point table after the section page" awk '/Section properties/ && !s {s = NR} /Profile offset point/ && !t {t = NR} END {exit !(s && s < t)}' out
finish
