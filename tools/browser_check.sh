#!/usr/bin/env bash
# Renders the demo's result pages in headless Chromium, as a reader would see
# them, and fails when the tree menu does not build, a page refers to a file
# that is not there, a tree entry leads to an anchor the document lacks, or a
# page shows a script error. An XML result is turned into its page by
# xsltproc with the shipped style sheet first.
#
#   bash tools/browser_check.sh <path to morvcore binary>
#
# Screenshots (*.png), DOM dumps and logs go to browser-check/ in the build
# folder (the binary's folder). While the demo
# writes no result yet, a sample result written by the document module (the
# SampleDocument test of test_output) stands in for it.
set -uo pipefail

bin=$(realpath "$1")
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
demo=demo-run
build=$(dirname "$bin")
out="$build/browser-check"
rm -rf "$out"
mkdir -p "$out"
passed=0
failed=0

say() { printf '%s\n' "$*"; }
pass() { passed=$((passed + 1)); say "  ok    $*"; }
fail() { failed=$((failed + 1)); say "  FAIL  $*"; }

find_chrome() {
  local c
  for c in chromium chromium-browser google-chrome; do
    command -v "$c" >/dev/null && { command -v "$c"; return; }
  done
}

install_tools() {
  local need=()
  [ -n "$(find_chrome)" ] || need+=(chromium fonts-dejavu-core)
  command -v xsltproc >/dev/null || need+=(xsltproc)
  [ ${#need[@]} -eq 0 ] && return
  local sudo=""
  [ "$(id -u)" -ne 0 ] && sudo=sudo
  say "Installing ${need[*]} ..."
  $sudo apt-get update -q >"$out/apt.log" 2>&1
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -q "${need[@]}" >>"$out/apt.log" 2>&1 ||
    { say "could not install ${need[*]} (see $out/apt.log)"; exit 1; }
}

# Headless Chromium with a fresh profile each time; stderr goes to the log.
chrome() {
  local profile rc
  profile=$(mktemp -d)
  timeout 120 "$CHROME" --headless --no-sandbox --disable-gpu --disable-quic --no-first-run \
    --disable-background-networking --disable-component-update --disable-sync \
    --user-data-dir="$profile" --hide-scrollbars "$@" 2>>"$out/chromium.log"
  rc=$?
  rm -rf "$profile"
  return $rc
}

url_of() { local p=${1// /%20}; printf 'file://%s' "$p"; }
decode() { printf '%s' "${1//%20/ }"; }

# The file a page's src/href names: "file:///" + path, or relative to the page.
path_of_ref() {
  local ref=${1%%#*} dir=$2
  ref=$(decode "$ref")
  case $ref in
    file:///*) ref=${ref#file:///}; [[ $ref == /* ]] || ref="/$ref"; printf '%s' "$ref" ;;
    /*) printf '%s' "$ref" ;;
    *) printf '%s/%s' "$dir" "$ref" ;;
  esac
}

check_refs() {  # page: every src/href it names must exist
  local page=$1 dir ref missing=0
  dir=$(dirname "$page")
  while IFS= read -r ref; do
    ref=${ref#*=\"}
    ref=${ref%\"}
    [ -z "${ref%%#*}" ] && continue
    if [ ! -e "$(path_of_ref "$ref" "$dir")" ]; then
      fail "$(basename "$page") refers to a missing file: $ref"
      missing=1
    fi
  done < <(grep -oiE '(src|href)="[^"]*"' "$page")
  [ $missing -eq 0 ] && pass "$(basename "$page"): every referenced file is there"
}

check_tree_links() {  # every entry of the tree script leads to a file and an anchor
  local script=$1 doc=$2 dir link file anchor bad=0 n=0
  dir=$(dirname "$script")
  while IFS= read -r link; do
    [ -z "$link" ] && continue
    n=$((n + 1))
    file=$(path_of_ref "$link" "$dir")
    if [ ! -e "$file" ]; then
      fail "tree entry leads to a missing file: $link"; bad=1; continue
    fi
    if [[ $link == *#* ]]; then
      anchor=$(decode "${link#*#}")
      grep -qF "NAME=\"$anchor\"" "$file" || { fail "no anchor \"$anchor\" in $(basename "$file")"; bad=1; }
    fi
  done < <(sed -nE 's/.*, "([^"]*)"\)+ *$/\1/p' "$script")
  [ $bad -eq 0 ] && pass "$(basename "$script"): all $n links lead to files and anchors"
}

check_no_error() {  # dump: the DOM of a rendered page
  local dump=$1 what=$2 err
  err=$(grep -oE 'data-mrv-error="[^"]*"' "$dump" | head -n 1)
  if [ -n "$err" ]; then fail "$what shows an error: $err"; else pass "$what: no script error"; fi
}

check_icons() {  # the icons the tree code names must be in the script's ICONPATH
  local tree=$1 script=$2 code icons icon bad=0
  code=$(grep -oE 'src="[^"]*ftiens4.js"' "$tree" | head -n 1)
  code=${code#src=\"}
  code=$(path_of_ref "${code%\"}" "$(dirname "$tree")")
  icons=$(grep -oE "ICONPATH = '[^']*'" "$script" | head -n 1)
  icons=${icons#ICONPATH = \'}
  icons=$(path_of_ref "${icons%\'}" "$(dirname "$script")")
  icons=${icons%/}
  [ -e "$code" ] || return
  for icon in $(grep -oE 'tree_[a-z_]+\.svg' "$code" | sort -u); do
    [ -e "$icons/$icon" ] || { fail "missing icon $icons/$icon"; bad=1; }
  done
  [ $bad -eq 0 ] && pass "$(basename "$script"): every icon is in $icons"
}

check_tree_page() {
  local tree=$1 script=$2 name dump entries
  name=$(basename "$tree" .htm)
  dump="$out/$name.dom.html"
  check_refs "$tree"
  check_icons "$tree" "$script"
  chrome --dump-dom "$(url_of "$tree")?selftest" >"$dump" || { fail "$name: Chromium failed"; return; }
  entries=$(grep -oE 'g(Fld|Lnk)\(' "$script" | wc -l)
  if grep -q "data-mrv-tree=\"$entries\"" "$dump"; then
    pass "$name: the tree menu is built with all $entries entries"
  else
    fail "$name: the tree menu was not built with $entries entries ($(grep -oE 'data-mrv-tree="[^"]*"' "$dump" || echo none))"
  fi
  if grep -q 'data-mrv-selftest="ok"' "$dump"; then
    pass "$name: every folder opens and closes"
  else
    fail "$name: folders do not open and close"
  fi
  check_no_error "$dump" "$name"
  chrome --screenshot="$out/$name.png" --window-size=420,720 "$(url_of "$tree")?expand" >/dev/null
}

# An XML result becomes its page through the style sheet its head names.
transform_xml() {
  local doc=$1 page=$2 sheet
  sheet=$(grep -oE 'href="file:///[^"]*MorvalinStyleSheet.xsl"' "$doc" | head -n 1)
  sheet=${sheet#href=\"}
  sheet=$(path_of_ref "${sheet%\"}" "$(dirname "$doc")")
  if [ ! -e "$sheet" ]; then fail "$(basename "$doc") names a missing style sheet: $sheet"; return 1; fi
  if ! xsltproc --nonet "$sheet" "$doc" >"$page" 2>"$out/xsltproc.log"; then
    fail "xsltproc could not turn $(basename "$doc") into a page (see $out/xsltproc.log)"
    return 1
  fi
  pass "$(basename "$doc"): well-formed, turned into a page by $(basename "$sheet")"
}

check_document() {
  local doc=$1 name page dump anchors shown
  name=$(basename "$doc")
  page=$doc
  if [[ $doc == *.xml ]]; then
    page="$out/${name%.xml}.xslt.htm"
    transform_xml "$doc" "$page" || return
  fi
  check_refs "$page"
  dump="$out/$(basename "$page").dom.html"
  chrome --dump-dom "$(url_of "$page")" >"$dump" || { fail "$name: Chromium failed"; return; }
  anchors=$(grep -oE '<A NAME="' "$doc" | wc -l)
  shown=$(grep -oiE '<a name="' "$dump" | wc -l)
  if [ "$anchors" -gt 0 ] && [ "$shown" -eq "$anchors" ]; then
    pass "$name: the page shows all $anchors anchors"
  else
    fail "$name: the page shows $shown of $anchors anchors"
  fi
  check_no_error "$dump" "$name"
  chrome --screenshot="$out/$(basename "$page" .htm).png" --window-size=1100,720 "$(url_of "$page")" >/dev/null
}

# The whole view: the frame page, or for an XML result a copy whose right
# frame holds the transformed page.
screenshot_frames() {
  local main=$1 doc=$2 name frame
  name=$(basename "$main" .htm)
  frame=$main
  if [[ $doc == *.xml ]]; then
    frame="$out/$name.xslt.htm"
    sed -e "s|src=\"\\([^\"]*_tree.htm\\)\"|src=\"$(url_of "$(dirname "$main")")/\\1\"|" \
        -e "s|SRC=\"[^\"]*\"|SRC=\"$(url_of "$out/$(basename "${doc%.xml}").xslt.htm")\"|" \
        "$main" >"$frame"
  fi
  chrome --screenshot="$out/$name.png" --window-size=1200,720 "$(url_of "$frame")" >/dev/null &&
    say "  screenshot $out/$name.png"
}

check_result() {
  local main=$1 dir base doc src
  dir=$(dirname "$main")
  base=${main%_main.htm}
  say "$(basename "$base"):"
  check_refs "$main"
  src=$(grep -oE 'FRAME SRC="[^"]*"' "$main" | head -n 1)
  src=${src#FRAME SRC=\"}
  doc="$dir/$(decode "${src%\"}")"
  [ -e "$doc" ] || { fail "no result document $doc"; return; }
  check_tree_page "${base}_tree.htm" "${base}.js"
  check_tree_links "${base}.js" "$doc"
  check_document "$doc"
  screenshot_frames "$main" "$doc"
}

install_tools
CHROME=$(find_chrome)

bash tools/demo.sh "$bin" "$demo" >"$out/demo.log" 2>&1 || { say "the demo failed (see $out/demo.log)"; exit 1; }
shopt -s nullglob
pages=("$root/$demo"/*.res/*_main.htm)
if [ ${#pages[@]} -eq 0 ]; then
  say "The demo wrote no result pages; checking the sample result of the document module."
  cmake --build "$build" --target test_output >"$out/build.log" 2>&1 ||
    { say "could not build test_output (see $out/build.log)"; exit 1; }
  MORVCORE_SAMPLE_RESULT_DIR="$root/$demo" "$build/tests/test_output" \
    --gtest_filter='SampleDocument.*' >"$out/sample.log" 2>&1 ||
    { say "the sample result could not be written (see $out/sample.log)"; exit 1; }
  pages=("$root/$demo"/*.res/*_main.htm)
fi
for main in "${pages[@]}"; do check_result "$main"; done

say "browser check: $passed passed, $failed failed (screenshots in $out)"
[ $failed -eq 0 ] && [ $passed -gt 0 ]
