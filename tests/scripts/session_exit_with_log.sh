# Start, create a project, leave by EXIT: exit 0 and a log with its lines.
source "$(dirname "$0")/lib.sh"
mkdir -p "$HOME/T-cnfg"
run_kntr $'demo\nyes\nACME\nDesigner\n9\nyes\n'
check "exit status 0" test "$status" -eq 0
log="$HOME/T-cnfg/Tarvik.log"
check "log written" test -f "$log"
check "entering line" grep -Eq '^host  entering module KNTR version 1998-0223 on [0-9]{2}-[A-Z][a-z]{2}-[0-9]{4} at [0-9]{2}:[0-9]{2}:[0-9]{2}$' "$log"
check "CPU line" grep -Eq '^CPU usage:  0\.000E\+00 \[sec\]$' "$log"
check "exiting line" grep -Eq '^host  exiting module KNTR version 1998-0223 on .* at .*$' "$log"
check "three lines" test "$(wc -l <"$log")" -eq 3
check "main menu shown" contains out "MANIPULATE KNTR DATA"
check "plain exit question" contains out "OK to EXIT module ** KNTR ** ? (yes/no)"
check "project file written" test -f demo.PJC
check "hand-over file written" grep -qx 'execution-mode=alone' PJCT.TMP
check "no colour sequences in a pipe" bash -c "! grep -q $'\x1b' out"
finish
