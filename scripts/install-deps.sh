#!/usr/bin/env bash
# Installs the Debian 12 packages needed to build and test EmitterDossierDoc,
# clang and its sanitizer and libFuzzer runtimes, clang-format, and groff, which
# checks the manual page, included.
# Does nothing, and says nothing, when all of them are already there.
#
#   install-deps.sh [MAJOR...]   the Qt of each major given: 5 (the default), 6
set -euo pipefail

qt_packages=()
for major in "${@:-5}"; do
  case "$major" in
    5) qt_packages+=(qtbase5-dev) ;;
    6) qt_packages+=(qt6-base-dev) ;;
    *) echo "install-deps: Qt $major is not supported (5 or 6)" >&2; exit 2 ;;
  esac
done

packages=(
  build-essential
  cmake
  ninja-build
  pkg-config
  "${qt_packages[@]}"
  zlib1g-dev
  libgtest-dev
  libgmock-dev
  googletest
  libbenchmark-dev
  clang
  libclang-rt-14-dev
  clang-format
  libxml2-utils  # xmllint, for the tests of the XML Schema
  groff-base     # groff, for the test of the manual page
  doxygen        # the API reference (target docs)
)

# One dpkg-query for all of them: a package it does not list as installed
# (unknown to dpkg, removed, half installed) is missing.
declare -A installed=()
while IFS=' ' read -r pkg status; do
  if [ "$status" = "install ok installed" ]; then
    installed[$pkg]=1
  fi
done < <(dpkg-query -W -f='${Package} ${Status}\n' "${packages[@]}" 2>/dev/null || true)

missing=()
for pkg in "${packages[@]}"; do
  if [ -z "${installed[$pkg]:-}" ]; then
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
