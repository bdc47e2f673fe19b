# Plot a keyed-in profile from the main menu to a configured PostScript plot
# file: the set-up menu, the medium, the file name and the scale; then a
# configured CGM file, which this version does not write.
source "$(dirname "$0")/lib.sh"
cat >"$scratch/plot.rc" <<'RC'
define-file-plt=lens.ps
file-plt-interface=PostScript
file-plt-maximum-paper-size=4
define-file-plt=lens.cgm
file-plt-interface=CGM
RC
export TARVIKRC="$scratch/plot.rc"
box=$'1\n0,10\n0,5\n'
closed=$'2\n1\n0,0\n1,1\n1\n3,1\n2\n4,3\n1\n2,4\n1\n1,3\n1\n\nyes\n'
# Plot: RETURN past the set-up, file, the first file plotter, the name, fit.
plot=$'6\n\n3\n1\nlens.ps\n0\n'
# Plot to the CGM file: said, and back at the main menu.
cgm=$'6\n\n3\n2\nlens.cgm\n0\n\n'
run_kntr "demo"$'\nyes\nACME\nme\n'"$box$closed$plot$cgm"$'9\nyes\nyes\n'
check "exit status 0" test "$status" -eq 0
check "set-up menu" contains out "SETUP OF PLOT ATTRIBUTTES"
check "medium question" contains out "Select output media? (display = 1, plotter = 2, file = 3)"
check "plot file written" test -s lens.ps
check "PostScript head" test "$(head -n 1 lens.ps)" = "%!PS-Adobe-2.0"
check "PostScript trailer" test "$(tail -n 1 lens.ps)" = "%%Trailer"
check "curves drawn" test "$(grep -c ' lt$' lens.ps)" -gt 50
check "CGM refused" contains out "CGM output is not written by this version"
check "no CGM file" test ! -e lens.cgm
finish
