#!/bin/sh
# Makes sure the Debian packages a build needs are present: installs the
# missing ones when run as root, otherwise names them and stops.
# Usage: tools/ensure-packages.sh [--no-recommends] package...
recommends=""
if [ "$1" = "--no-recommends" ]; then recommends="--no-install-recommends"; shift; fi
missing=""
for p in "$@"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing="$missing $p"
done
[ -z "$missing" ] && exit 0
if [ "$(id -u)" = "0" ]; then
  echo "installing:$missing"
  apt-get update -qq && DEBIAN_FRONTEND=noninteractive apt-get install -y -qq $recommends $missing >/dev/null || exit 1
else
  echo "missing Debian packages:$missing"
  echo "install them with: sudo apt-get install -y$missing"
  exit 1
fi
