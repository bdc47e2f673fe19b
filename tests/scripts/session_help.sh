# "?" at the module's questions shows a help text, and the question comes back.
source "$(dirname "$0")/lib.sh"
run_kntr $'demo\n?\n\nyes\n?\n\nACME\nme\n1\n0,10\n0,10\n2\n1\n?\n\n0,0\n?\n\n1,1\n?\n\n1\n\n9\nyes\n'
check "exit status 0" test "$status" -eq 0
for text in \
  "No project file of this name exists: yes creates it" \
  "This name is written in the head of every file and printout" \
  "The point the profile is translated and rotated about" \
  "X and Y of the next point; RETURN ends the curve..." \
  "CC keeps the curvature continuous, a knuckle makes a corner"; do
  check "help: $text" contains out "$text"
done
check "no question without help" bash -c '! grep -q "No help available" "$0"' "$scratch/out"
finish
