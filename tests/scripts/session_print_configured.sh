# Print a profile on the file printer of the sample configuration: the
# listing goes into a file named at the prompt, with every formatting token
# translated.
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
finish
