#!/usr/bin/env bash
# Runs morvcore on the first shipped example (the DNA project dna_groups.mvp,
# with its own settings file) in a scratch folder, and shows what the run
# left: the console, the files of the result folder and the log.
#
#   bash tools/demo.sh <morvcore binary> <scratch folder>     (called by `make demo`)
#
# The viewer files of share/ are copied beside the project, so that the
# frame page <project>.res/<project>_main.htm opens in a browser.
set -euo pipefail
bin=$(realpath "$1")
dir=$2
root=$(cd "$(dirname "$0")/.." && pwd)
rm -rf "$dir"
mkdir -p "$dir"
cp -r "$root"/examples/. "$dir"/
[ -d "$root/share" ] && cp -r "$root"/share/. "$dir"/
cd "$dir"
project=$(ls *.mvp 2>/dev/null | head -n 1 || true)
if [ -z "$project" ]; then
  "$bin" -help
  echo
  echo "No example project shipped yet; printed the usage text instead."
  exit 0
fi
echo "== morvcore $project ${project%.mvp}.mvs"
"$bin" "$project" "${project%.mvp}.mvs"
echo
res="$PWD/${project%.mvp}.res"
echo
echo "== Files of the result folder $res"
ls -l "$res"
echo
echo "== The log, $res/Morvalin_log.txt"
cat "$res/Morvalin_log.txt"
echo
echo "Open $res/${project%.mvp}_main.htm in a browser to read the result document."
