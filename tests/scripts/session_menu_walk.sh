# Every row of the module's menus, in the terminal and in the window, once:
# each row opens its dialogue, which is then left by "$", RETURN, CANCEL or
# its own RETURN row. Nothing answers "Not implemented", nothing crashes, and
# the session ends through EXIT.
source "$(dirname "$0")/lib.sh"
unset DISPLAY

box=$'1\n0,10\n0,5\n'
curve=$'2\n1\n0,0\n1,1\n1\n3,2\n1\n5,2.5\n1\n7,2\n1\n9,1\n1\n\nno\n'
walk=""
# Manipulate profile (4); modify curve (4): insertion (1), each of its rows
# left at the segment question
walk+=$'4\n#item 4\n#item 1\n#item 1\n$\n#item 2\n$\n#item 3\n$\n#item 4\n$\n#item 5\n'
# moving (2): each mode left at the point question (no snap line: refused)
walk+=$'#item 2\n#item 1\n$\n#item 2\n$\n#item 3\n$\n#item 4\n\n#item 5\n$\n#item 6\n$\n#item 7\n'
# fairing (3): each row, the properties, CANCEL
walk+=$'#item 3\n#item 1\n$\n#item 2\n$\n#item 3\n$\n#item 4\n$\n#item 5\n$\n#item 6\n$\n#item 7\n$\n#item 8\n'
# deletion (4); point types (5), the four tangent menus left by DONE
walk+=$'#item 4\n$\n#item 5\n#item 1\n$\n#item 2\n$\n#item 3\n$\n#item 4\n$\n#item 5\n$\n#item 6\n#item 4\n#item 7\n#item 4\n#item 8\n#item 4\n#item 9\n#item 7\n#item 10\n#item 6\n'
# next curve (1), a separator (2), creation (3) cancelled
walk+=$'#item 1\n#item 2\n#item 3\n#item 2\n'
# whole-profile modification (7): type, parameterization, split, orient
# (translate, rotate), reference point, fit box
walk+=$'#item 7\n#item 1\n#item 3\n#item 2\n#item 6\n#item 3\n$\n#item 4\n#item 1\n$\n#item 2\n$\n#item 3\n#item 5\n$\n#item 6\n#item 7\n'
# snap line (8), mesh export (9: the open curve has no region), view parameters (10)
walk+=$'#item 8\n$\n#item 9\n\n#item 10\n#item 4\n'
# display options (11): spline control, every toggle twice
walk+=$'#item 11\n#item 1\n#item 1\n#item 1\n#item 2\n#item 2\n#item 3\n#item 3\n#item 4\n$\n#item 5\n#item 6\n'
# meshing control, with the quality set-up
walk+=$'#item 2\n#item 1\n#item 1\n#item 2\n#item 2\n#item 3\n#item 3\n#item 4\n#item 1\n#item 6\n$\n#item 7\n#item 8\n#item 5\n$\n#item 6\n#item 6\n#item 7\n#item 7\n#item 8\n#item 8\n#item 9\n'
# display control, and the hardcopy left at its first menu
walk+=$'#item 3\n#item 1\n#item 1\n#item 2\n#item 2\n#item 3\n#item 3\n#item 4\n#item 4\n$\n#item 5\n'
# the curve deleted (5), back to the terminal
walk+=$'#item 5\n#item 12\n'
# the main menu's rows: box, key-in, digitizing (its three rows), print and
# plot (no curves now), setup and file menus
walk+=$'1\n$\n2\n$\n3\n#item 1\n$\n#item 2\n\n#item 3\n$\n#item 4\n5\n\n\n6\n\n7\n11\n8\n11\n'
run_kntr "walk"$'\nyes\nACME\nme\n'"$box$curve$walk"$'9\nyes\n'
check "exit through EXIT" test "$status" -eq 0
check "no row unbuilt" bash -c "! grep -q 'Not implemented' out"
check "every answer taken" bash -c "! grep -qE 'Terminating program|Input must be an integer' out"
for menu in "CURVE POINT INSERTION" "PROFILE POINT MOVING" "PROFILE POINT FAIRING" \
    "POINT TYPE MODIFICATION" "LEADING TANGENT" "TRAILING TANGENT" "EQUAL TANGENT" \
    "BOTH TANGENTS" "PROFILE CURVE CREATION" "PROFILE MODIFICATION" "PROFILE TYPE SELECTION" \
    "SPLINE PARAMETERIZATION" "ORIENT PROFILE" "GRAPHICS RELATED VIEW PA" "DISPLAY OPTIONS" \
    "CURVE SPLINE CONTROL" "INTERIOR MESHING CONTROL" "SETUP OF MESHING QUALITY" \
    "DISPLAY CONTROL" "SETUP OF PLOT ATTRIBUTTES" "PROFILE DIGITIZING" "PROFILE TYPE"; do
  check "menu $menu shown" contains out "$menu"
done
check "the disabled form of a row without curves" contains out "( Print profile )"
finish
