#!/usr/bin/env bash
# Runs every libFuzzer target of a fuzz build for the given number of
# seconds over a working copy of its seed corpus (fuzz/corpus/<target without
# the fuzz_ prefix>/); the seeds in the source tree are never changed.
#
#   bash tools/fuzz.sh <build dir> <seconds>      (called by `make fuzz`)
#
# Needs clang++ with libFuzzer (on Debian the clang package brings it; if a
# link of -fsanitize=fuzzer fails, install libclang-rt-dev or the
# libclang-common-<version>-dev of the installed clang). Fuzzing is not part
# of CI. A crash or hang leaves its input in <build dir>/fuzz-artifacts/ and
# makes the script fail; keep such an input as a regression test.
set -euo pipefail

build_dir=${1:?usage: tools/fuzz.sh <build dir> <seconds>}
seconds=${2:?usage: tools/fuzz.sh <build dir> <seconds>}
source_dir=$(cd "$(dirname "$0")/.." && pwd)
# Absolute paths: a target may change its working folder.
build_dir=$(cd "$build_dir" && pwd)
artifacts="$build_dir/fuzz-artifacts"
mkdir -p "$artifacts"

status=0
found=0
for target in "$build_dir"/fuzz/fuzz_*; do
  [ -x "$target" ] && [ -f "$target" ] || continue
  found=1
  name=$(basename "$target")
  seeds="$source_dir/fuzz/corpus/${name#fuzz_}"
  corpus="$build_dir/fuzz-corpus/$name"
  mkdir -p "$corpus"
  if [ -d "$seeds" ]; then cp -n "$seeds"/* "$corpus"/ 2>/dev/null || true; fi
  echo "== $name for ${seconds}s over $corpus"
  if ! "$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
      -artifact_prefix="$artifacts/$name-" -print_final_stats=1 "$corpus"; then
    echo "== $name found a failure; its input is in $artifacts/" >&2
    status=1
  fi
done

if [ "$found" = 0 ]; then
  echo "no fuzz targets in $build_dir/fuzz (configure with CXX=clang++ -DMORVCORE_FUZZ=ON)" >&2
  exit 1
fi
exit $status
