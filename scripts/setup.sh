#!/usr/bin/env bash
# Installs every Debian package the build, the tests and the demo need, when missing.
# Safe to run again: it does nothing when everything is there.
set -euo pipefail

packages=(
  cmake make ninja-build
  g++-mingw-w64-x86-64-posix gcc-mingw-w64-x86-64-posix mingw-w64-tools binutils-mingw-w64-x86-64
  wine64 wine libwine-dev
  xvfb xauth x11-utils imagemagick
  fonts-wqy-microhei
  googletest
  clang libclang-rt-dev llvm
  librsvg2-bin
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done

if ((${#missing[@]})); then
  echo "setup: installing ${missing[*]}"
  sudo_cmd=()
  [ "$(id -u)" -eq 0 ] || sudo_cmd=(sudo)
  export DEBIAN_FRONTEND=noninteractive
  "${sudo_cmd[@]}" apt-get update -qq
  "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
