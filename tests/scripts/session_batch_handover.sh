# A hand-over file asking for batch mode: the module refuses it and runs
# interactively on the project it names.
source "$(dirname "$0")/lib.sh"
mkdir -p "$HOME/T-cnfg"
run_kntr $'ship\nyes\nACME\nme\n9\nyes\n'        # make the project first
check "project made" test -f ship.PJC
printf 'execution-mode=batch\nproject=ship\n' > PJCT.TMP
run_kntr $'9\nyes\n'
check "exit status 0" test "$status" -eq 0
check "started line" contains out "Module >KNTR< started"
check "refusal" contains out "Batch mode not supported for KNTR - using interactive mode"
check "menu after the refusal" contains out "MANIPULATE KNTR DATA"
check "no project question" bash -c "! grep -q 'Input name of project file' out"
check "hand-over written back in interactive mode" grep -qx 'execution-mode=alone' PJCT.TMP
# Only the mode, no project: the project is asked for.
printf 'execution-mode=batch\n' > PJCT.TMP
run_kntr $'ship\n9\nyes\n'
check "exit status 0 without a project" test "$status" -eq 0
check "refusal again" contains out "Batch mode not supported for KNTR - using interactive mode"
finish
