#!/usr/bin/env bash
# Installs the Debian packages mtkit needs to build, test and benchmark,
# when they are missing. Idempotent; nothing else is downloaded.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config
  libjsoncpp-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  libeigen3-dev liborocos-kdl-dev
  clang libclang-rt-dev
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

echo "setup: installing ${missing[*]}" >&2
sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then sudo_cmd=(sudo); fi
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -q
"${sudo_cmd[@]}" apt-get install -y -q --no-install-recommends "${missing[@]}"
