# kntr-tool plot writes plot files: PostScript on the paper asked for, at a
# scale; EPSF; HP-GL and HP-GL/2; and refuses a paper it does not know.
source "$(dirname "$0")/lib.sh"
bench="$KNTR_SOURCE_DIR/data/bench"
for kind in ps eps hpgl hpgl2; do
  "$KNTR_TOOL" plot "$bench/spline-lens.kntr" --$kind "lens.$kind" 2>err.txt
  check "$kind exit 0" test $? -eq 0
  check "$kind written" test -s "lens.$kind"
done
check "A4 PostScript by default" grep -qx '%%Dimensions: 40 68 785 510' lens.ps
check "EPSF page of the box's aspect at 180 mm" grep -qx '%%BoundingBox: 0 0 510 340' lens.eps
check "HP-GL A4 set-up" grep -qx 'IN;IP       0,     100,   10869,    7299;' lens.hpgl
check "PostScript trailer" test "$(tail -n 1 lens.ps)" = "%%Trailer"
"$KNTR_TOOL" plot "$bench/spline-lens.kntr" --paper A3 --scale 1:50 --ps a3.ps
check "A3 at 1:50 exit 0" test $? -eq 0
check "A3 page" grep -qx '%%Dimensions: 33 68 1133 785' a3.ps
"$KNTR_TOOL" plot "$bench/spline-lens.kntr" --paper A9 --ps bad.ps 2>bad.txt
check "unknown paper refused" test $? -eq 2
check "usage names the papers" contains bad.txt "--paper A4|A3|A2|A1|A0"
check "no file for a refused paper" test ! -e bad.ps
if command -v gs >/dev/null; then
  gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=png16m -r40 -sOutputFile=a3.png a3.ps 2>gs.txt
  check "ghostscript renders the A3 plot" test $? -eq 0 -a ! -s gs.txt
fi
finish
