#!/usr/bin/env bash
# Installs all packages of a directory into an empty root: install_packages.sh PACKAGES ROOT. As root with dpkg and a
# database in ROOT; otherwise by unpacking them, since dpkg sets owners. Their dependencies are the system's packages.
set -euo pipefail
packages=$1 root=$2

rm -rf "$root"
mkdir -p "$root"/var/lib/dpkg/{updates,info,triggers} "$root/var/log"
touch "$root/var/lib/dpkg/status"
if [ "$(id -u)" -eq 0 ]; then
  dpkg --root="$root" --force-depends --no-triggers --install "$packages"/*.deb >"$root/var/log/install" 2>&1 ||
    { cat "$root/var/log/install"; exit 1; }
  dpkg --root="$root" --verify
else
  for package in "$packages"/*.deb; do
    dpkg-deb --extract "$package" "$root"
  done
fi
