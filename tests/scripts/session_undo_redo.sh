# Undo and redo in the headless window: an insertion, a horizontal move, a
# fairing and a deletion, all four undone and two redone; the saved file
# then equals the one saved after the second step. An undo while a command
# waits for its position is refused, and an undo with nothing left says so.
pictures="$(cd "$(dirname "$0")" && pwd)/pictures.py"
profile="$(cd "$(dirname "$0")" && pwd)/profile_file.py"
source "$(dirname "$0")/lib.sh"
unset DISPLAY
mkdir -p "$HOME/T-cnfg"

box=$'1\n0,10\n0,5\n'
curve=$'2\n1\n0,0\n1,1\n1\n3,2\n1\n5,2.5\n1\n7,2\n1\n9,1\n1\n\nno\n'
save() { session+=$'#item 6\n#item 12\n8\n3\n'"$1"$'\n\n\n11\n4\n#item 4\n'; }
session="$box$curve"$'8\n3\nstart.knt\n\n\n11\n4\n#item 4\n'
# 1: insert free on segment 2 at (4, 3).
session+=$'#item 1\n#item 1\n2\n4,3\n$\n#item 5\n'
# 2: move point 1 to X = 0.5; an undo at the coordinate question is refused.
session+=$'#item 2\n#item 2\n1\n#undo\n\n0.5\n$\n#item 7\n#picture step2.png\n'
save step2.knt
# 3: fair point 4; 4: delete point 2.
session+=$'#item 3\n#item 1\n4\n#item 9\n#item 4\n2\n$\n#picture step4.png\n'
save step4.knt
# Undo all four (and one more), save; redo two, save.
session+=$'#undo\n#undo\n#undo\n#undo\n#picture undone.png\n#undo\n\n'
save undone.knt
session+=$'#redo\n#redo\n#picture redone.png\n'
save redone.knt
session+=$'#item 6\n#item 12\n9\nyes\n'
run_kntr "demo"$'\nyes\nACME\nme\n'"$session"
check "exit status 0" test "$status" -eq 0
check "saves written" test -s step2.knt -a -s step4.knt -a -s undone.knt -a -s redone.knt
check "undo refused while the move waits" contains out "Finish the present command before undo or redo!"
check "nothing left to undo" contains out "Nothing to undo!"
count() { python3 "$profile" count "$1" 1; }
check "the four steps changed the curve (5 -> $(count step2.knt) -> $(count step4.knt) points)" \
  test "$(count step2.knt)" -eq 6 -a "$(count step4.knt)" -eq 5
check "the move was made after the refused undo" test "$(python3 "$profile" point step2.knt 1 1)" = "0.5 1.0"
check "step 4 differs from step 2" test "$(python3 "$profile" point step4.knt 1 3)" != "$(python3 "$profile" point step2.knt 1 4)"
check "four undos give the start" python3 "$profile" same undone.knt start.knt
check "two redos give step 2" python3 "$profile" same redone.knt step2.knt
check "pictures written" test -s step2.png -a -s step4.png -a -s undone.png -a -s redone.png
# The current curve is red: the undo shows in the picture.
check "the undone picture differs from step 4" \
  test "$(python3 "$pictures" count undone.png red)" -ne "$(python3 "$pictures" count step4.png red)"
finish
