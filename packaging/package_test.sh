#!/usr/bin/env bash
# The Debian package, checked as an operator gets it: built by CPack from
# the build directory, unpacked with dpkg -x into a scratch root, its pxctl
# run from there against the installed INI file, its desktop entry, man
# pages and bash completion tried, and lintian asked for errors.
#
#   package_test.sh BUILD_DIR SOURCE_DIR
# Exit 77 (skipped) when a packaging tool is missing (scripts/setup installs
# them all).
set -euo pipefail
build="$1"
source="$2"

for tool in cpack dpkg-deb lintian desktop-file-validate man; do
  if ! command -v "$tool" >/dev/null; then
    echo "package_test: $tool is not installed (scripts/setup installs it); skipped"
    exit 77
  fi
done

scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT
failures=0
fail() { echo "FAILED: $*"; failures=$((failures + 1)); }

# --- build the package ------------------------------------------------------
cpack --config "$build/CPackConfig.cmake" -B "$scratch/out" >"$scratch/cpack.log" 2>&1 ||
  { cat "$scratch/cpack.log"; exit 1; }
debs=("$scratch"/out/nexa-control_*_amd64.deb)
deb="${debs[0]}"
[ -f "$deb" ] || { cat "$scratch/cpack.log"; echo "FAILED: no nexa-control_VERSION_amd64.deb"; exit 1; }
echo "package: $(basename "$deb")"

# --- what it holds ----------------------------------------------------------
dpkg-deb -c "$deb" | awk '{ print $1, $6 }' >"$scratch/contents"
cat "$scratch/contents"
expect() {  # expect MODE PATH: the package holds PATH with that mode
  grep -qxF -- "$1 ./$2" "$scratch/contents" || fail "the package lacks $2 ($1)"
}
for program in pxcntrl pxctl pxserver-sim; do
  expect -rwxr-xr-x "usr/bin/$program"
  expect -rw-r--r-- "usr/share/man/man1/$program.1.gz"
done
expect -rw-r--r-- etc/pxcntrl.ini
expect -rw-r--r-- usr/share/applications/nexa-control.desktop
expect -rw-r--r-- usr/share/icons/hicolor/scalable/apps/nexa-control.svg
expect -rw-r--r-- usr/share/bash-completion/completions/pxctl
expect -rw-r--r-- usr/share/doc/nexa-control/pxcntrl.html
expect -rw-r--r-- usr/share/doc/nexa-control/guide.md
expect -rw-r--r-- usr/share/doc/nexa-control/pictures/view_137_status_and_queue.png
expect -rw-r--r-- usr/share/doc/nexa-control/copyright
expect -rw-r--r-- usr/share/doc/nexa-control/changelog.gz
expect -rw-r--r-- usr/share/doc-base/nexa-control-help
expect -rw-r--r-- usr/share/doc-base/nexa-control-guide
dpkg-deb -I "$deb" conffiles | grep -qx /etc/pxcntrl.ini || fail "/etc/pxcntrl.ini is not a conffile"

# --- run it from a scratch root ---------------------------------------------
root="$scratch/root"
dpkg -x "$deb" "$root"
pxctl=("$root/usr/bin/pxctl" "-aii$root/etc/pxcntrl.ini")
"${pxctl[@]}" --help >"$scratch/help" || fail "pxctl --help exited $?"
grep -q 'Usage: pxctl' "$scratch/help" || fail "pxctl --help printed no usage"
output="$("${pxctl[@]}" msg 164 /etc/pxcntrl.ini 2>/dev/null)" || fail "pxctl msg exited $?"
[ "$output" = $'30\t[164]No instance of Nexa is configured: the install file named in /etc/pxcntrl.ini lists none in its Configuration section.' ] ||
  fail "pxctl msg 164 printed: $output"
"$root/usr/bin/pxserver-sim" --help | grep -q 'STAND-IN' || fail "pxserver-sim --help"

# Every message number of the catalogue's documentation is in the installed
# INI file.
while read -r number; do
  grep -q "^Msg${number#-}=" "$root/etc/pxcntrl.ini" || fail "message $number is missing from /etc/pxcntrl.ini"
done < <(sed -n 's/^| \(-\{0,1\}[0-9][0-9]*\) |.*/\1/p' "$source/docs/messages.md")

# Every picture the installed guide links is installed beside it.
guide="$root/usr/share/doc/nexa-control/guide.md"
while read -r picture; do
  [ -f "$root/usr/share/doc/nexa-control/$picture" ] || fail "the installed guide links $picture, which the package lacks"
done < <(grep -o '](pictures/[^)]*)' "$guide" | sed 's|^](||; s|)$||' | sort -u)

# Every warning and error of the catalogue's documentation is in the
# installed guide's troubleshooting section, alone or in a range "A to B".
sed -n '/^## 6\. Troubleshooting/,$p' "$guide" | grep '^| ' | awk -F' [|] ' '{ print $1 }' |
  sed 's/^| //' | awk '{
    n = split($0, parts, /, /)
    for (i = 1; i <= n; i++) {
      if (split(parts[i], r, / to /) == 2) for (k = r[1]; k <= r[2]; k++) print k
      else print parts[i]
    }
  }' | sort -u >"$scratch/troubleshooting"
while read -r number; do
  grep -qxF -- "$number" "$scratch/troubleshooting" || fail "message $number is not in the guide's troubleshooting"
done < <(sed -n 's/^| \(-\{0,1\}[0-9][0-9]*\) | [23]0 |.*/\1/p' "$source/docs/messages.md")

# Every pxctl command of README's table has its entry in pxctl(1): a line of
# the rendered page's command list that starts with it (or lists it after a
# comma, as "pause, resume, ...").
LC_ALL=C MANWIDTH=200 man -l "$root/usr/share/man/man1/pxctl.1.gz" 2>/dev/null >"$scratch/pxctl.man"
readme_commands() {  # each command of README's pxctl table, as its leading words
  sed -n '/^| command | what it does |$/,/^$/p' "$source/README.md" | tail -n +3 |
    awk -F' [|] ' '{ print $1 }' | grep -o '`[^`]*`' | tr -d '`' |
    awk '{ phrase = ""; for (i = 1; i <= NF && $i ~ /^-?-?[a-z][a-z-]*$/; i++) phrase = phrase (i > 1 ? " " : "") $i;
           if (phrase != "") print phrase }'
}
checked=0
while read -r phrase; do
  checked=$((checked + 1))
  grep -qE "^ {7}(\S.*, )?${phrase}( |,|\$)" "$scratch/pxctl.man" || fail "pxctl(1) has no entry for '$phrase'"
done < <(readme_commands)
[ "$checked" -ge 40 ] || fail "only $checked commands found in README's table"
grep -qE "^ {7}pxctl .*COMMAND \[ARG\.\.\.\] --instance NAME" "$scratch/pxctl.man" ||
  fail "pxctl(1) does not show --instance after the command word"

desktop-file-validate "$root/usr/share/applications/nexa-control.desktop" || fail "desktop-file-validate"
for program in pxcntrl pxctl pxserver-sim; do
  page="$(MANWIDTH=80 man --warnings -l "$root/usr/share/man/man1/$program.1.gz" 2>&1)"
  grep -q "^NAME" <<<"$page" || fail "man page $program(1) does not render"
  if grep -q 'warning' <<<"$page"; then fail "man page $program(1): $(grep warning <<<"$page")"; fi
done

# --- bash completion: commands, and instance names from the INI's install file
mkdir -p "$scratch/site"
printf '[Plexar]\nInstall=%s\n' "$scratch/site/plexar.ini" >"$scratch/site/pxcntrl.ini"
printf '[Configuration]\nnorth=%s\nsouth=%s\n' "$scratch/site/north.ini" "$scratch/site/south.ini" \
  >"$scratch/site/plexar.ini"
printf '[Processes]\nPXSERVER=Plexar Server\nPXEMIO=Plexar E-mail Agent\n' >"$scratch/site/north.ini"
printf '[Processes]\nPXMERGE=Plexar Print Agent\n' >"$scratch/site/south.ini"
complete_line() {  # complete_line WORD...: the completions of the last word
  bash -c '
    source "$1"; shift
    COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1))
    _pxctl
    printf "%s\n" "${COMPREPLY[@]}"' _ "$root/usr/share/bash-completion/completions/pxctl" "$@" | sort | tr '\n' ' '
}
got="$(complete_line "$root/usr/bin/pxctl" re)"
[ "$got" = "reject-file rejects reload-jobs reload-printer resume " ] || fail "completion of 're' gave: $got"
got="$(complete_line "$root/usr/bin/pxctl" "-aii$scratch/site/pxcntrl.ini" --instance "")"
[ "$got" = "north south " ] || fail "completion after --instance gave: $got"
got="$(complete_line "$root/usr/bin/pxctl" st)"
[ "$got" = "start start-email state status stop-email " ] || fail "completion of 'st' gave: $got"
got="$(complete_line "$root/usr/bin/pxctl" "-aii$scratch/site/pxcntrl.ini" --instance north config show "")"
[ "$got" = "PXEMIO PXSERVER " ] || fail "completion of process keys gave: $got"
got="$(complete_line "$root/usr/bin/pxctl" "-aii$scratch/site/pxcntrl.ini" --instance north log --process "")"
[ "$got" = "PXEMIO PXSERVER " ] || fail "completion of log --process gave: $got"
# --instance NAME also after the command word, once, unless the command's
# words are free text.
got="$(complete_line "$root/usr/bin/pxctl" "-aii$scratch/site/pxcntrl.ini" rejects --instance "")"
[ "$got" = "north south " ] || fail "completion after a command's --instance gave: $got"
got="$(complete_line "$root/usr/bin/pxctl" "-aii$scratch/site/pxcntrl.ini" log --instance south --process "")"
[ "$got" = "PXMERGE " ] || fail "completion of log --process after --instance gave: $got"
got="$(complete_line "$root/usr/bin/pxctl" "-aii$scratch/site/pxcntrl.ini" config --instance south show "")"
[ "$got" = "PXMERGE " ] || fail "completion of config show after --instance gave: $got"
got="$(complete_line "$root/usr/bin/pxctl" state -)"
[ "$got" = "--instance " ] || fail "completion of state's options gave: $got"
got="$(complete_line "$root/usr/bin/pxctl" --instance north state -)"
[[ "$got" != *--instance* ]] || fail "completion offered a second --instance: $got"
got="$(complete_line "$root/usr/bin/pxctl" "-aii$scratch/site/pxcntrl.ini" msg --instance "")"
[ "$got" != "north south " ] || fail "msg's words completed as instance names"
got="$(complete_line "$root/usr/bin/pxctl" config show PXSERVER "")"
[ "$got" = "characters currency jobcard locations network " ] || fail "completion of config forms gave: $got"
got="$(complete_line "$root/usr/bin/pxctl" "-aii$scratch/site/pxcntrl.ini" instances default "")"
[ "$got" = "north south " ] || fail "completion of instances default gave: $got"
got="$(complete_line "$root/usr/bin/pxctl" jmd "")"
[ "$got" = "add add-step check copy-job delete delete-step edit edit-step list move-step new-job save show " ] ||
  fail "completion of jmd subcommands gave: $got"
got="$(complete_line "$root/usr/bin/pxctl" jmd list x.jmd "")"
[ "$got" = "jobs memory printers tasks " ] || fail "completion of jmd list tables gave: $got"
got="$(complete_line "$root/usr/bin/pxctl" jmd show x.jmd "")"
[ "$got" = "jobs memory printers steps tasks " ] || fail "completion of jmd show tables gave: $got"
got="$(complete_line "$root/usr/bin/pxctl" jmd add x.jmd "")"
[ "$got" = "memory printers tasks " ] || fail "completion of jmd add tables gave: $got"

# --- lintian ----------------------------------------------------------------
echo "lintian:"
lintian -I -E --pedantic --fail-on error "$deb" | tee "$scratch/lintian" || fail "lintian reports errors"
# The documentation is registered with doc-base, and its registration is sound.
if grep -q 'doc-base' "$scratch/lintian"; then fail "lintian: $(grep doc-base "$scratch/lintian")"; fi

if [ "$failures" -ne 0 ]; then
  echo "$failures check(s) failed"
  exit 1
fi
echo "package test passed"
