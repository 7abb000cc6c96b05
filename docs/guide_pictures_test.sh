#!/usr/bin/env bash
# The guide's pictures and docs/pictures/ hold the same files: every picture
# docs/guide.md links (pictures/NAME.png) is in docs/pictures/, and every file
# in docs/pictures/ is linked from the guide, so neither can drift from the
# other unseen (scripts/screenshots --docs takes them again).
#
#   guide_pictures_test.sh [SOURCE_DIR]
set -uo pipefail
root="${1:-$(cd "$(dirname "$0")/.." && pwd)}"
guide="$root/docs/guide.md"
pictures="$root/docs/pictures"
failures=0
fail() { echo "FAILED: $*"; failures=$((failures + 1)); }

[ -f "$guide" ] || { echo "FAILED: no $guide"; exit 1; }
[ -d "$pictures" ] || { echo "FAILED: no $pictures"; exit 1; }

# Every link target that is a picture, as the guide spells it.
linked="$(grep -o '](pictures/[^)]*)' "$guide" | sed 's|^](||; s|)$||' | sort -u)"
[ -n "$linked" ] || fail "the guide links no picture"
while read -r target; do
  [ -n "$target" ] || continue
  case "$target" in
    pictures/*/*) fail "the guide links $target: pictures lie directly in docs/pictures/" ;;
    *.png) [ -f "$root/docs/$target" ] || fail "the guide links $target, which docs/pictures/ lacks" ;;
    *) fail "the guide links $target, which is not a PNG" ;;
  esac
done <<<"$linked"

# Every file in docs/pictures/ is linked.
count=0
for file in "$pictures"/* "$pictures"/.[!.]*; do
  [ -e "$file" ] || continue
  count=$((count + 1))
  name="pictures/$(basename "$file")"
  grep -qxF -- "$name" <<<"$linked" || fail "docs/$name is not linked from the guide"
done

# An image is shown with its text: ![caption](pictures/NAME.png), never with
# an empty caption.
if grep -n '!\[\](pictures/' "$guide"; then fail "a picture without a caption"; fi

echo "guide pictures: $(grep -c . <<<"$linked") linked, $count in docs/pictures/, $failures failures"
[ "$failures" = 0 ]
