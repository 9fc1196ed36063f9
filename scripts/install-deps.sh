#!/usr/bin/env bash
# Installs the Debian packages that the build needs; does nothing when all are present.
set -euo pipefail

# The desktop program kaldena needs Qt 6 Widgets with printing (qt6-base-dev; its offscreen,
# xcb and JPEG plugins come with libqt6gui6); its screenshot test runs it under xvfb-run.
packages=(build-essential cmake make pkg-config libgtest-dev libgmock-dev libbenchmark-dev
          libcairo2-dev libjpeg-dev zlib1g-dev python3 python3-gemmi python3-pycifrw
          qt6-base-dev libqt6gui6 xvfb xauth)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -q
$sudo apt-get install -y -q --no-install-recommends "${missing[@]}"
