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
# Summary files of the diversity indices, written beside the project.
printf '%s/\n_GENE_DIVERSITY_\n_NUCLEOTIDE_COMPOSITION_\n_MOLECULAR_DIVERSITY_\n_THETA_\n' "$PWD" > glbstreams.txt
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
doc=$(ls "$res"/"${project%.mvp}".xml "$res"/"${project%.mvp}".htm 2>/dev/null | head -n 1 || true)
echo "== Diversity indices of each sample, from $doc"
grep -E "== Sample :|Gene diversity  |Mean number of pairwise|Nucleotide diversity|^Theta\(" "$doc" || true
echo
echo "== Summary files (glbstreams.txt turned them on), in $PWD"
for f in gen_div.sum nucl_comp.sum mold_div.sum theta.sum; do
  [ -f "$f" ] && echo "   $PWD/$f ($(wc -l < "$f") lines)"
done
echo
echo "Results of the demo run are in: $res"
echo "Open $res/${project%.mvp}_main.htm in a browser to read the result document."
