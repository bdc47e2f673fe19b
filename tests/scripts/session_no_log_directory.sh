# Without T-cnfg in the home directory the program runs and writes no log.
source "$(dirname "$0")/lib.sh"
run_kntr $'demo\nyes\nACME\nme\n9\nyes\n'
check "exit status 0" test "$status" -eq 0
check "no log directory made" test ! -e "$HOME/T-cnfg"
check "no error shown" bash -c "! grep -qi 'I/O problems' out"
finish
