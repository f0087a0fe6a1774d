#!/usr/bin/env bash
# Runs morvcore on the shipped DNA example in a scratch folder and says where
# the results are.
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
"$bin" "$project" "${project%.mvp}.mvs" || true
res="$PWD/${project%.mvp}.res"
echo
echo "Results of the demo run are in: $res"
