# Shared by the scripted sessions: a scratch home and working directory,
# and checks that say what failed.
set -u
KNTR="$1"
KNTR_TOOL="${2:-}"
scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT
export HOME="$scratch/home"
mkdir -p "$HOME"
cd "$scratch"
export TERM=xterm
unset TARVIKRC COLUMNS LINES
export KNTR_SITE_CONFIG_DIR="$scratch/site"

failures=0
check() {  # check DESCRIPTION COMMAND...
  local what="$1"
  shift
  if "$@"; then
    echo "ok: $what"
  else
    echo "FAILED: $what"
    failures=$((failures + 1))
  fi
}
contains() { grep -qF -- "$2" "$1"; }
finish() {
  if [ "$failures" -ne 0 ]; then
    echo "--- transcript"
    cat "$scratch/out" 2>/dev/null | tail -80
    exit 1
  fi
  exit 0
}
# run_kntr INPUT-TEXT [ARGS...]: runs the program on the input, keeping the
# transcript in $scratch/out and the exit status in $status.
run_kntr() {
  local input="$1"
  shift
  printf '%s' "$input" | timeout 20 "$KNTR" "$@" >"$scratch/out" 2>&1
  status=$?
}
