#!/usr/bin/env bash
# Debian 12 packages the console, its tests and benchmarks need.
set -euo pipefail
packages=(
  g++ cmake make
  qt6-base-dev qt6-base-dev-tools libqt6sql6-sqlite
  libsqlite3-dev sqlite3
  poppler-utils
  libgl-dev
  fonts-dejavu-core
  tango-icon-theme
  # the icons, the Debian package and the tools that check them
  librsvg2-bin dpkg-dev file
  desktop-file-utils appstream lintian man-db
)
missing=()
for p in "${packages[@]}"; do
  dpkg -s "$p" >/dev/null 2>&1 || missing+=("$p")
done
if [ "${#missing[@]}" -gt 0 ]; then
  export DEBIAN_FRONTEND=noninteractive
  apt-get update
  apt-get install -y --no-install-recommends "${missing[@]}"
fi
