#!/bin/sh
# End-to-end test of kormath_register.
#   register_e2e_test.sh PROGRAM WORKDIR
# 1. The embedded default registers to within the stated tolerance of its
#    ground truth and writes its PLY files and plot with --out.
# 2. Bad inputs give a one-line error naming the file (and line), a non-zero
#    exit status and no output files.
set -u
prog="$1"
work="$2"
rm -rf "$work"
mkdir -p "$work"
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

# Tolerances of the default: 0.05 mm noise on about 1300 points per view
# leaves a registration error of a few hundredths of a millimetre; 0.1 mm
# and 0.1 degree are well above that and far below a wrong alignment.
max_point_error=0.1
max_angle_error=0.1

"$prog" --out "$work/out" > "$work/default.txt" 2> "$work/default.err"
status=$?
[ "$status" -eq 0 ] || fail "default run exited with $status: $(cat "$work/default.err")"
line=$(grep '^ground-truth error:' "$work/default.txt")
[ -n "$line" ] || fail "no ground-truth line in the output"
echo "$line"
echo "$line" | awk -v p="$max_point_error" -v a="$max_angle_error" \
  '{ if (!($7 + 0 < p && $11 + 0 < a)) exit 1 }' || fail "ground-truth error above tolerance: $line"
for f in convergence.svg registered_0_view0.ply registered_3_view3.ply; do
  [ -s "$work/out/$f" ] || fail "missing output $f"
done
[ -z "$(ls "$work/out" | grep '\.part$')" ] || fail "temporary files left behind"
grep -q '^pair 0 <- 1' "$work/default.txt" || fail "no pair table"
grep -q '^registration tree' "$work/default.txt" || fail "no tree"

# Files: the registered default views, read back from PLY, are already in
# place, so every placement is close to the identity.
"$prog" "$work/out/registered_0_view0.ply" "$work/out/registered_1_view1.ply" \
  "$work/out/registered_2_view2.ply" > "$work/files.txt" 2> "$work/files.err" ||
  fail "registering the written PLY files failed: $(cat "$work/files.err")"
grep -A1 '^final placements' "$work/files.txt" | grep -q 'view0.ply: rotation 0.0000 deg' || fail "no placements from files"
awk '/\.ply: rotation/ { n++; if ($3 + 0 > 0.05) bad = 1 } END { exit bad || n != 3 }' "$work/files.txt" ||
  fail "placements of already registered files are not near the identity"

# Bad inputs. Each case: file contents, the text the error must contain.
good="$work/good.xyz"
awk 'BEGIN { for (i = 0; i < 40; i++) printf "%d %d %d\n", i % 7, int(i / 7), (i * i) % 5 }' > "$good"
printf '1 2 3\n4 5 6\n7 8 abc\n' > "$work/word.xyz"
printf '1 2 3\n4 5\n' > "$work/short.xyz"
printf '1 2 3 4\n' > "$work/four.xyz"
printf '1 2 3\n4 5 6\n' > "$work/few.xyz"
awk 'BEGIN { for (i = 0; i < 40; i++) printf "%d %d %d\n", i, 2 * i, 3 * i }' > "$work/line.xyz"
awk 'BEGIN { for (i = 0; i < 40; i++) print "1 1 1" }' > "$work/same.xyz"
printf 'ply\nformat ascii 1.0\nelement vertex 2\nproperty float x\nproperty float y\nproperty float z\nend_header\n1 2 3\n1 2\n' > "$work/bad.ply"
printf 'ply\nformat binary_little_endian 1.0\nend_header\n' > "$work/binary.ply"

check_bad() {  # name expected-text files...
  name="$1"; expect="$2"; shift 2
  rm -rf "$work/badout"
  "$prog" --out "$work/badout" "$@" > "$work/$name.out" 2> "$work/$name.err"
  status=$?
  [ "$status" -ne 0 ] || fail "$name: exit status 0"
  [ "$(wc -l < "$work/$name.err")" -eq 1 ] || fail "$name: error is not one line: $(cat "$work/$name.err")"
  grep -q -F "$expect" "$work/$name.err" || fail "$name: error lacks \"$expect\": $(cat "$work/$name.err")"
  [ ! -e "$work/badout" ] || fail "$name: output folder was created"
}
check_bad missing "$work/nothere.xyz: cannot open" "$good" "$work/nothere.xyz"
check_bad word "$work/word.xyz:3:" "$good" "$work/word.xyz"
check_bad short "$work/short.xyz:2:" "$work/short.xyz" "$good"
check_bad four "$work/four.xyz:1:" "$good" "$work/four.xyz"
check_bad few "$work/few.xyz: only 2 points" "$good" "$work/few.xyz"
check_bad line "$work/line.xyz: degenerate" "$good" "$work/line.xyz"
check_bad same "$work/same.xyz: degenerate" "$good" "$work/same.xyz"
check_bad ply "$work/bad.ply:9:" "$good" "$work/bad.ply"
check_bad binary "$work/binary.ply:2:" "$good" "$work/binary.ply"
check_bad single "at least two point sets" "$good"

if [ "$failures" -ne 0 ]; then
  echo "$failures check(s) failed"
  exit 1
fi
echo "all end-to-end checks passed"
