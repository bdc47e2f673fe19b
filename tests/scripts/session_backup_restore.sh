# The backup file holds the data as they stood when the session began:
# save, change, save again, reset, and "Load backup file" brings back the
# session's starting data.
source "$(dirname "$0")/lib.sh"
# Session 1: one curve, saved.
run_kntr $'demo\nyes\nACME\nme\n'$'1\n0,10\n0,10\n'$'2\n1\n0,0\n1,1\n\n5,1\n\n5,5\n\n\nno\n'$'8\n2\n\n\n11\n'$'9\nyes\n'
check "first session ends" test "$status" -eq 0
check "data file saved" test -f demo.KNT
check "no backup yet" test ! -e demo.KNB
# Session 2: the project's data load, and the backup is written at once.
run_kntr $'demo\n\n\n'$'2\n2,2\n\n8,2\n\n\n'$'8\n2\nyes\n\n\n'$'6\nyes\n'$'5\n\n\n'$'3\ncheck.knt\n\n\n11\n'$'9\nyes\n'
check "second session ends" test "$status" -eq 0
check "backup written at session start" test -f demo.KNB
check "saved file has two curves" test "$("$KNTR_TOOL" polyline demo.KNT | grep -c '^curve')" -eq 2
check "backup has one curve" test "$("$KNTR_TOOL" polyline demo.KNB | grep -c '^curve')" -eq 1
check "restored data saved as check.knt" test "$("$KNTR_TOOL" polyline check.knt | grep -c '^curve')" -eq 1
check "loaded from the backup" contains out 'Loading profile data from "demo.KNB"'
finish
