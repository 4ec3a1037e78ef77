#!/usr/bin/env bash
# Builds and tests the project on another Debian or another architecture, in a chroot.
#
#   scripts/port.sh [--help] TARGET [STEP...]
#
# TARGET  debian12, debian13: a bare chroot of that release, in which the two commands of the README run unchanged; then the
#         packages are installed, used by a consumer and purged
#         arm64, s390x: a cross build in a chroot of Debian 13, and the tests of the bundle's own code under emulation
#
# STEP    one of the steps to run (default: all): demo, test and packages; for another architecture setup, build,
#         bundle-tests, commands and packages
#
# Must run as root; needs a Debian mirror and about 4 GB in build/port/TARGET. Prints one line for each step and at the end the
# row for the table in docs/testing.md, in which "commands" is in the column of the demo. Keeps a log of each step in
# build/port/TARGET.
# The next run uses the chroot build/port/TARGET/root again; remove it to start with a bare one. Exit 1 when a step failed.
set -euo pipefail
. "$(dirname "$0")/common.bash"

target=${1:-}
case "$target" in
  debian12) release=bookworm ;;
  debian13 | arm64 | s390x) release=trixie ;;
  *) refuse "unknown target '$target'; there are debian12, debian13, arm64 and s390x" ;;
esac
[ "$(id -u)" -eq 0 ] || fail "only root can make a chroot"
# In a mount namespace of its own, so that the mounts below end with this script, however it ends.
[ -n "${PORT_MOUNTS:-}" ] || PORT_MOUNTS=private exec unshare --mount scripts/port.sh "$@"

# The one test that emulation cannot run: the C.UTF-8 of the chroot is in the byte order of the machine that emulates.
emulated_left_out='C\.UTF-8'

steps=("${@:2}")
for name in "${steps[@]}"; do
  [[ " demo test packages setup build bundle-tests commands " == *" $name "* ]] || refuse "unknown step '$name'"
done

work=$PWD/build/port/$target
root=$work/root
mkdir -p "$work"
declare -A cells

in_root() { chroot "$root" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LANG=C.UTF-8 bash -euc "$1"; }

# step NAME COMMAND: runs the command in the chroot's copy of the sources, prints a line and sets the step's cell.
step() {
  [ ${#steps[@]} -eq 0 ] || [[ " ${steps[*]} " == *" $1 "* ]] || return 0
  local begin=$SECONDS result=passed
  in_root "cd /root/ii_ascii_util; $2" >"$work/$1.log" 2>&1 || result=FAILED
  cells[$1]=$(sed -n 's/^.*% tests passed, \([0-9]*\) tests failed out of \([0-9]*\)$/\2 tests, \1 failed, /p' "$work/$1.log" | tail -n 1)
  [ -z "${cells[$1]}" ] || cells[$1]+="$(grep -c '\*\*\*Skipped' "$work/$1.log" || true) skipped, "
  cells[$1]+="$result in $((SECONDS - begin)) s"
  echo "$1: ${cells[$1]} ($work/$1.log)"
  if [ "$result" = FAILED ]; then
    tail -n 20 "$work/$1.log"
    exit 1
  fi
}

version() { in_root "dpkg-query --show --showformat='\${Version}' $1 | sed 's/[-+].*//'"; }

# row COMPILER ARCHITECTURE STEP...: the row of the table, with the cells of those steps.
row() {
  local name text
  text="| $target | GCC $(in_root "$1 -dumpfullversion"), glibc $(version "libc6:$2"), ACE $(version "libace-dev:$2")"
  for name in "${@:3}"; do
    text+=" | ${cells[$name]:-not run}"
  done
  echo "$text | $(date -u +%F) |"
}

scripts/setup.sh port
case "$target" in
  arm64 | s390x)
    # The kernel runs the target's programs with the emulator that binfmt_misc names; in a container it is not mounted at first.
    emulator=qemu-${target/arm64/aarch64}
    [ -e /proc/sys/fs/binfmt_misc/status ] || mount -t binfmt_misc binfmt_misc /proc/sys/fs/binfmt_misc
    [ -e "/proc/sys/fs/binfmt_misc/$emulator" ] || update-binfmts --enable "$emulator" ;;
esac
if [ ! -f "$root/etc/debian_version" ]; then
  echo "Making a bare chroot of Debian $release in $root"
  debootstrap --variant=minbase --include=git,ca-certificates "$release" "$root" >"$work/debootstrap.log"
fi
mount -t proc proc "$root/proc"
mount --bind /dev "$root/dev"
mount --bind /dev/pts "$root/dev/pts"

# The working tree, new files included.
rm -rf "$root/root/ii_ascii_util"
mkdir -p "$root/root/ii_ascii_util"
git ls-files --cached --others --exclude-standard | while IFS= read -r file; do [ ! -e "$file" ] || echo "$file"; done |
  tar -cf - -T - |
  tar -xf - --no-same-owner -C "$root/root/ii_ascii_util"

# cross ARCHITECTURE TRIPLET. Of host and almcfg the programs alone are built, and bundle_host runs the example commands.
cross() {
  local arch=$1 triplet=$2
  step setup "dpkg --add-architecture $arch
    apt-get update -q
    DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends g++-$triplet cmake ninja-build pkgconf pkgconf:$arch \
      python3 make locales binutils debhelper libcli11-dev nlohmann-json3-dev \
      libace-dev:$arch libedit-dev:$arch libgtest-dev:$arch libgmock-dev:$arch"
  step build "export PKG_CONFIG_LIBDIR=/usr/lib/$triplet/pkgconfig:/usr/share/pkgconfig
    cmake --preset release -DCMAKE_SYSTEM_NAME=Linux -DCMAKE_SYSTEM_PROCESSOR=${triplet%%-*} \
      -DCMAKE_CXX_COMPILER=$triplet-g++ -DASCII_UTIL_OTHER_CXX=none -DASCII_UTIL_PRECOMPILE=ON
    cmake --build --preset release --target bundle_tests bundle_host almcfg sbom"
  step bundle-tests "ctest --test-dir build/release --label-regex bundle --exclude-regex '$emulated_left_out' \
    --no-tests=error --output-on-failure --parallel $(nproc)"
  step commands "build/release/host/bundle_host --config-dir examples/config --bundle build/release/src/libii_ascii_util.so \
    run examples/every_operation.txt
    grep -q 'arch=$arch' build/release/ii_ascii_util.cdx.json"
  step packages "scripts/package.sh --output /root/packages -d -a$arch
    cd /root/packages
    [ \"\$(dpkg-deb --field libii-ascii-util_*_$arch.deb Architecture)\" = $arch ]
    dpkg-deb --fsys-tarfile libii-ascii-util_*_$arch.deb |
      tar -xO ./usr/lib/$triplet/ii_ascii_util/ii_ascii_util.cdx.json >/root/bill.json
    grep -q 'arch=$arch' /root/bill.json
    ! grep 'arch=$(dpkg --print-architecture)' /root/bill.json"
  row "$triplet-g++" "$arch" commands bundle-tests packages
}

native() {
  step demo "scripts/demo.sh"
  step test "scripts/test.sh"
  # Installs the packages that the tests have made, here with all their dependencies.
  step packages "apt-get install -y -q --no-install-recommends ./build/release/tests/packages/made/*.deb
    debian/tests/consumer
    debian/tests/demo
    apt-get purge -y -q libii-ascii-util
    [ -z \"\$(find /usr -path '*ii_ascii_util*')\" ]"
  row g++ "$(dpkg --print-architecture)" demo test packages
}

case "$target" in
  debian*) native ;;
  arm64) cross arm64 aarch64-linux-gnu ;;
  s390x) cross s390x s390x-linux-gnu ;;
esac
