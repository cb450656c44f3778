#!/usr/bin/env bash
# Run by scripts/check-package as root in a bare Debian system, with the package as its argument.
set -euo pipefail
deb=$1
home=/tmp/home

say() { printf '\n== %s ==\n' "$1"; }
fail() { echo "FAILED: $1" >&2; exit 1; }
user=(setpriv --reuid=nobody --regid=nogroup --clear-groups env "HOME=$home")
as_user() { "${user[@]}" "$@"; }

# All files of the system except the package manager's own records.
files() {
  find / -xdev \( -path /proc -o -path /dev -o -path /sys -o -path /tmp -o -path /run \
    -o -path /var/lib/dpkg -o -path /var/lib/apt -o -path /var/cache -o -path /var/log \) -prune \
    -o -print | sort
}

say "What it depends on"
apt-get update -q >/dev/null
apt-get satisfy -q -y --no-install-recommends "$(dpkg-deb -f "$deb" Depends)" >/tmp/apt.log
grep '^Need to get' /tmp/apt.log || echo "Nothing to download."
# Packages that cache the package's files, and tools that read them.
apt-get install -q -y --no-install-recommends shared-mime-info desktop-file-utils man-db \
  bash-completion libglib2.0-bin poppler-utils >/dev/null
files >/tmp/before

say "Installing"
apt-get install -q -y --no-install-recommends "$deb" >/dev/null
dpkg -L vrx2260 | while read -r path; do [ -e "$path" ] || fail "$path is missing"; done
for program in vrx2260 vrx2260ctl vrx2260sim; do
  ! ldd "$(command -v $program)" | grep 'not found' || fail "$program lacks a library"
  man --warnings -E UTF-8 -l "/usr/share/man/man1/$program.1.gz" >/dev/null 2>/tmp/said
  [ ! -s /tmp/said ] || fail "the manual page of $program: $(cat /tmp/said)"
done
desktop-file-validate /usr/share/applications/vrx2260.desktop
sample=/usr/lib/vrx2260/sample_site
kind=$(gio info -a standard::content-type $sample/SITE.RDB | sed -n 's/.*content-type: //p')
[ "$kind" = application/x-vrx2260-recipe-database ] || fail "the kind of a recipe database: $kind"
for kind in recipe-database transaction-database transactions recipe-backup; do
  gio mime application/x-vrx2260-$kind | grep -q 'vrx2260.desktop$' ||
    fail "a double click on a $kind does not start the program"
done

say "A day in the terminal"
mkdir $home
chown nobody: $home
cd $home
as_user vrx2260ctl --version
"${user[@]}" vrx2260sim module --link $home/krm --load $sample/day01.qxt --baud 0 >$home/ready &
module=$!
until grep -q ready $home/ready; do sleep 0.1; done
as_user vrx2260ctl module upload --out $home/today --port $home/krm
kill $module
wait $module || true
cmp $home/today/01.QXT $sample/day01.qxt
as_user vrx2260ctl new transaction YARD.TDB
as_user vrx2260ctl store today/01.QXT --into YARD.TDB --recipes $sample/SITE.RDB
as_user vrx2260ctl info YARD.TDB
as_user vrx2260ctl export YARD.TDB --group 8 --recipes $sample/SITE.RDB --format html --out pens.html
as_user vrx2260ctl print YARD.TDB --group 8 --recipes $sample/SITE.RDB --pdf pens.pdf
as_user pdftotext pens.pdf pens.txt
grep -q 'Page 1 of' pens.txt || fail "the printed page has no text"

say "The window, without a display"
"${user[@]}" QT_QPA_PLATFORM=offscreen vrx2260 >$home/said 2>&1 &
window=$!
sleep 5
kill -0 $window 2>/dev/null || fail "the window has gone: $(cat $home/said)"
kill -TERM $window
wait $window || fail "the window ended with $?: $(cat $home/said)"
# Only a window that was shown saves its position and size.
[ -s "$home/.config/Brantock/VRX(2260).conf" ] || fail "the window kept nothing for its user"
echo "It starts, and ends in order."

say "Removing"
apt-get purge -q -y vrx2260 >/dev/null
files >/tmp/after
diff /tmp/before /tmp/after || fail "removing leaves or takes files"
! dpkg -s vrx2260 >/dev/null 2>&1 || fail "the package is still known"
echo "Nothing is left."
