# Bad answers get their message and the dialogue goes on: blanks after a
# comma, a broken expression, an unknown option, "#system" inside a script,
# and "$" at the very first question.
source "$(dirname "$0")/lib.sh"
mkdir -p "$HOME/T-cnfg"
# The box with "0, 10" and "-5 ,5"; then "1+" and "2.5,x" are refused with a
# word; "#system" reads none of the lines that follow it.
run_kntr $'demo\nyes\nACME\nme\n1\n0, 10\n-5 ,5\n1\n1+, 3\n\n$\n#system\n9\nyes\n' -bogus 7
check "exit status 0" test "$status" -eq 0
check "unknown option named" contains out " (GTPGOP) Unknown option ** -bogus ** ignored"
check "box taken with blanks after the comma" contains out "(default  0.000E+00,  1.000E+01)"
check "second range taken" contains out "Modify bounding box"
check "syntax error told" contains out "Syntax error in expression ** 1+ **"
check "script goes on after #system" contains out "OK to EXIT module"
# "$" at the project question ends the program with the fatal message and
# the log's exit line.
rm -f "$HOME/T-cnfg/Tarvik.log"
run_kntr $'$\n\n'
check "abort at the first question: status 1" test "$status" -eq 1
check "fatal message" contains out "Tarvik fatal error"
check "log closed" grep -q 'exiting module KNTR' "$HOME/T-cnfg/Tarvik.log"
finish
