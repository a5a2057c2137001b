#!/usr/bin/env bash
# Checks the flash operations, built for the target, on a real /dev/mtd0: boots a kernel for 32-bit
# little-endian MIPS on an emulated board with 4 MiB of flash in blocks of 4 KiB, runs mtd_check
# there and switches the board off.
# usage: scripts/mtd_board.sh BUILD_FOLDER
#
# Debian packages: cmake ninja-build g++-mipsel-linux-gnu qemu-system-mips cpio
# The kernel is fetched once, into ${XDG_CACHE_HOME:-~/.cache}/oltmgmt/malta-kernel.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/mipsel_packages.sh

build=${1:?"usage: scripts/mtd_board.sh BUILD_FOLDER"}
cache=${XDG_CACHE_HOME:-$HOME/.cache}/oltmgmt
kernel=$cache/malta-kernel
boot_limit=180

die() {
  echo "mtd_board.sh: $*" >&2
  exit 1
}

need() {
  local tool
  for tool in cmake ninja mipsel-linux-gnu-g++ qemu-system-mipsel cpio flock; do
    command -v "$tool" >/dev/null || die "missing program '$tool'; expected one of these packages to be installed: $(sed -n 's/^# Debian packages: //p' "$0")"
  done
}

fetch_kernel() (
  work=$(mktemp -d "$cache/fetch.XXXXXX")
  trap 'rm -rf "$work"' EXIT
  cd "$work"
  mkdir files kernel
  mipsel_packages .
  package=$(apt-cache depends linux-image-4kc-malta | awk '/Depends: linux-image-[0-9]/ {print $2; exit}')
  download_packages "$package"
  dpkg --fsys-tarfile linux-image-*.deb | tar x -C files --wildcards './boot/vmlinuz-*' '*/mtd/devices/mtdram.ko'
  mv files/boot/vmlinuz-* kernel/vmlinuz
  find files -name mtdram.ko -exec mv {} kernel/ \;
  mv kernel "$kernel"
)

# One at a time: several builds may want it at once.
provide_kernel() {
  mkdir -p "$cache"
  exec 9>"$cache/lock"
  flock 9
  [ -f "$kernel/mtdram.ko" ] || fetch_kernel
  exec 9>&-
}

build_programs() {
  [ -f "$build/build.ninja" ] || cmake -S . -B "$build" -G Ninja --toolchain cmake/mipsel.cmake \
    -DCMAKE_BUILD_TYPE=Release -DOLT_HOST_TOOLS=OFF -DOLT_BOARD=ON >/dev/null
  cmake --build "$build" --target oltmgmt oltflash mtd_check board_init >"$build/build.log" ||
    { cat "$build/build.log"; die "the programs for the board could not be built"; }
}

# The board's files: its kernel unpacks them into memory.
pack_files() {
  local files=$build/files system=/usr/mipsel-linux-gnu/lib
  rm -rf "$files"
  mkdir -p "$files/lib"
  cp "$build/tests/target/board_init" "$files/init"
  cp "$build/tests/target/mtd_check" "$kernel/mtdram.ko" "$files/"
  cp "$build/liboltmgmt.so.0" "$build/flash_device/liboltflash.so" "$files/lib/"
  cp "$system/ld.so.1" "$system/libc.so.6" "$files/lib/"
  (cd "$files" && find . | cpio -o -H newc --quiet | gzip -1) >"$build/files.gz"
}

# qemu ends when the board switches itself off.
boot() {
  timeout "$boot_limit" qemu-system-mipsel -M malta -m 128 -nographic -no-reboot -nic none -vga none \
    -kernel "$kernel/vmlinuz" -initrd "$build/files.gz" -append "console=ttyS0 panic=-1 quiet" \
    </dev/null | tr -d '\r' | tee "$build/console.log" ||
    die "the board did not switch itself off within $boot_limit s"
}

judge() {
  local part
  for part in "a board without a flash" "the flash" "the kernel's view" "the simulated flash"; do
    grep -qx "board: $part: good" "$build/console.log" || die "checking $part failed; see $build/console.log"
  done
  [ "$(grep -c -E '^[1-9][0-9]* passed, 0 failed$' "$build/console.log")" -eq 4 ] ||
    die "expected 4 counts of checks without a failure; see $build/console.log"
}

need
mkdir -p "$build"
build=$(cd "$build" && pwd)
provide_kernel
build_programs
pack_files
boot
judge
