#!/usr/bin/env bash
# Installs the Debian packages the build needs, when any is missing.
set -euo pipefail
pkgs=(cmake ninja-build g++ pkg-config nlohmann-json3-dev libcairo2-dev libpng-dev libcli11-dev
      libpugixml-dev libgtest-dev libgmock-dev libbenchmark-dev
      libgtk-4-dev xvfb xauth xdotool libx11-dev  # the editor window and its tests
      clang libclang-rt-14-dev)  # clang builds the main build; its libFuzzer runtime serves `make fuzz`
missing=()
for p in "${pkgs[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
# For the interchange tests: Inkscape renders our SVG, poppler our PDF, and
# the extension runs on Inkscape's inkex (which needs lxml and cssselect).
# Without recommended packages: Inkscape alone is large enough.
extras=(inkscape poppler-utils python3-lxml python3-cssselect)
missingExtras=()
for p in "${extras[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missingExtras+=("$p")
done
if [ ${#missing[@]} -gt 0 ] || [ ${#missingExtras[@]} -gt 0 ]; then
  echo "installing: ${missing[*]} ${missingExtras[*]}"
  SUDO=""
  [ "$(id -u)" -eq 0 ] || SUDO="sudo"
  $SUDO apt-get update -qq
  if [ ${#missing[@]} -gt 0 ]; then
    DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq "${missing[@]}"
  fi
  if [ ${#missingExtras[@]} -gt 0 ]; then
    DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends "${missingExtras[@]}"
  fi
fi
