#!/usr/bin/env bash
# Installs the Debian 12 packages needed to build and test EmitterDossierDoc,
# clang and its sanitizer and libFuzzer runtimes included.
# Does nothing, and says nothing, when all of them are already there.
set -euo pipefail

packages=(
  build-essential
  cmake
  ninja-build
  pkg-config
  qtbase5-dev
  zlib1g-dev
  libgtest-dev
  libgmock-dev
  googletest
  libbenchmark-dev
  clang
  libclang-rt-14-dev
)

missing=()
for pkg in "${packages[@]}"; do
  if ! dpkg -s "$pkg" >/dev/null 2>&1; then
    missing+=("$pkg")
  fi
done

if [ "${#missing[@]}" -eq 0 ]; then
  exit 0
fi

if [ "$(id -u)" -eq 0 ]; then
  as_root=()
elif command -v sudo >/dev/null 2>&1; then
  as_root=(sudo)
else
  echo "install-deps: missing packages: ${missing[*]}" >&2
  echo "install-deps: run this script as root, or install sudo" >&2
  exit 1
fi

echo "install-deps: installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
"${as_root[@]}" apt-get update
"${as_root[@]}" apt-get install -y --no-install-recommends "${missing[@]}"
