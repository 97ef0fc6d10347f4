#!/usr/bin/env bash
# Installs the Debian packages mtkit needs to build, test and benchmark,
# when they are missing. Idempotent; nothing else is downloaded.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config
  libjsoncpp-dev libpugixml-dev libcli11-dev
  pybind11-dev python3-dev python3-numpy python3-matplotlib python3-pytest graphviz
  libgtest-dev libgmock-dev libbenchmark-dev
  libeigen3-dev liborocos-kdl-dev
  clang libclang-rt-dev
  locales
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done

sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then sudo_cmd=(sudo); fi

if [ ${#missing[@]} -gt 0 ]; then
  echo "setup: installing ${missing[*]}" >&2
  export DEBIAN_FRONTEND=noninteractive
  "${sudo_cmd[@]}" apt-get update -q
  "${sudo_cmd[@]}" apt-get install -y -q --no-install-recommends "${missing[@]}"
fi

# A locale with a decimal comma, so the tests can show that numbers in files
# and messages do not depend on the process locale.
if ! locale -a 2>/dev/null | grep -qi '^de_DE\.utf-\?8$'; then
  echo "setup: generating the de_DE.UTF-8 locale" >&2
  "${sudo_cmd[@]}" sed -i 's/^# *\(de_DE.UTF-8 UTF-8\)/\1/' /etc/locale.gen
  grep -q '^de_DE.UTF-8 UTF-8' /etc/locale.gen || echo 'de_DE.UTF-8 UTF-8' | "${sudo_cmd[@]}" tee -a /etc/locale.gen >/dev/null
  "${sudo_cmd[@]}" locale-gen >/dev/null
fi
