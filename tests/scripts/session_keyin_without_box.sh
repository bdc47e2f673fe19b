# "Key-in profile" with no bounding box: the error, and the menu again.
source "$(dirname "$0")/lib.sh"
run_kntr $'demo\nyes\nACME\nme\n2\n\n9\nyes\n'
check "exit status 0" test "$status" -eq 0
check "error line" contains out "Bounding box must be given before keying in profile!"
check "menu shown twice" test "$(grep -c 'MANIPULATE KNTR DATA' out)" -ge 2
check "disabled row in brackets" contains out "2.  ... ( Key-in profile )"
finish
