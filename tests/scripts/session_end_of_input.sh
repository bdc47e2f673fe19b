# Input that ends in the middle of a dialogue: the EOF message, the log
# closed, a non-zero status, at once.
source "$(dirname "$0")/lib.sh"
mkdir -p "$HOME/T-cnfg"
run_kntr $'demo\nyes\nACME\nme\n1\n0,'
check "non-zero status" test "$status" -ne 0
check "not killed by the timeout" test "$status" -ne 124
check "EOF message" contains out "Terminating program due to EOF on input"
check "log closed" grep -q 'exiting module KNTR' "$HOME/T-cnfg/Tarvik.log"
# Empty input at the very first question.
run_kntr ''
check "non-zero status on empty input" test "$status" -eq 1
check "EOF message on empty input" contains out "Terminating program due to EOF on input"
finish
