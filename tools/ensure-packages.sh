#!/bin/sh
# Makes sure the Debian packages a build needs are present: installs the
# missing ones when run as root, otherwise names them and stops.
# Usage: tools/ensure-packages.sh package...
missing=""
for p in "$@"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing="$missing $p"
done
[ -z "$missing" ] && exit 0
if [ "$(id -u)" = "0" ]; then
  echo "installing:$missing"
  apt-get update -qq && DEBIAN_FRONTEND=noninteractive apt-get install -y -qq $missing >/dev/null || exit 1
else
  echo "missing Debian packages:$missing"
  echo "install them with: sudo apt-get install -y$missing"
  exit 1
fi
