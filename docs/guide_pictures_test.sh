#!/usr/bin/env bash
# The guide's pictures and docs/pictures/ hold the same files: every picture
# docs/guide.md links (pictures/NAME.png) is in docs/pictures/, and every file
# in docs/pictures/ is linked from the guide, so neither can drift from the
# other unseen (scripts/screenshots --docs takes them again); and no two of
# them are the same picture.
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

# No two pictures are the same bytes: one would be shown twice under two
# names, and the package would hold a duplicate file.
duplicates="$(cd "$pictures" && md5sum -- * 2>/dev/null | sort | uniq -w32 -D | awk '{ print $2 }' | tr '\n' ' ')"
[ -z "$duplicates" ] || fail "pictures with the same bytes: $duplicates"

# An image is shown with its text: ![caption](pictures/NAME.png), never with
# an empty caption.
if grep -n '!\[\](pictures/' "$guide"; then fail "a picture without a caption"; fi

echo "guide pictures: $(grep -c . <<<"$linked") linked, $count in docs/pictures/, $failures failures"
[ "$failures" = 0 ]
