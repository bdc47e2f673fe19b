# Print a profile on the printers of the sample configuration: the file
# printer writes the listing into a file named at the prompt, with every
# formatting token translated; the system printer hands its spool file to
# "lp" (a stand-in here, first in PATH).
source "$(dirname "$0")/lib.sh"
sample="$KNTR_SOURCE_DIR/data/kntr-sample.rc"

box=$'1\n0,10\n0,5\n'
curve=$'2\n1\n0,0\n1,1\n1\n3,1\n2\n4,3\n1\n2,4\n1\n1,3\n1\n\nyes\n'
# File printer, the configured one, the file's name.
print=$'5\n3\n\nprofile.lst\n'
run_kntr "demo"$'\nyes\nACME\nme\n'"$box$curve$print"$'9\nyes\n' -configuration "$sample"
check "exit status 0" test "$status" -eq 0
check "every answer taken" bash -c "! grep -qE 'undefined constant|Input must be|Wrong number' out"
check "all four choices offered" contains out "Printer is? (screen = 1, printer = 2, file = 3, cancel = 4)"
check "file printer menu" contains out "FILE PRINTERS"
check "configured file printer offered" contains out "1.  ... listing"
check "file name asked" contains out "Input name of print file? (max 80 characters)"
check "listing written" test -f profile.lst
check "no tokens left in the file" bash -c "! grep -q '{' profile.lst"
check "box of the first page" grep -qxF -- '+-----------------------------------------------------------------------------+' profile.lst
check "heading name" grep -qF -- '--- KNTR profile listings ---' profile.lst
check "project in the head" grep -qE '^! Project  : demo +!$' profile.lst
check "outline" grep -qxF -- 'Type .............................................. : Cubic spline' profile.lst
check "table head" grep -qxF -- '!Point !   X-coord  !   Y-coord  !   Knuckle  !     Point type      !' profile.lst
check "knuckle row" grep -qxF -- '!    2 !  3.000E+00 !  1.000E+00 !  1.000E+00 ! Knuckle             !' profile.lst
check "last row" grep -qxF -- '!    5 !  1.000E+00 !  3.000E+00 !          - ! Continous curvature !' profile.lst
check "one page of at most 72 lines" test "$(wc -l <profile.lst)" -le 72
check "nothing printed on the screen" bash -c "! grep -q 'Profile offset point definition' out"

# The same on the system printer, with the spool file kept here.
mkdir -p bin
cat >bin/lp <<EOF
#!/bin/sh
echo "\$@" > "$scratch/lp.args"
for a; do last="\$a"; done
cp "\$last" "$scratch/lp.copy"
EOF
chmod +x bin/lp
sed "s#^spool-directory=.*#spool-directory=$scratch#" "$sample" >site.rc
PATH="$scratch/bin:$PATH" run_kntr $'demo\n'"$box$curve"$'5\n2\n\n9\nyes\n' -configuration site.rc
check "second run exit status 0" test "$status" -eq 0
check "printer menu" contains out "PRINTERS"
check "lp called with the queue and the spool file" grep -qxF -- "-d office $scratch/spool.prnt" lp.args
check "spooled listing" grep -qxF -- '!    2 !  3.000E+00 !  1.000E+00 !  1.000E+00 ! Knuckle             !' lp.copy
check "no tokens in the spool file" bash -c "! grep -q '{' lp.copy"
finish
