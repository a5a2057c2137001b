#!/usr/bin/env bash
# Provides what the library is built and tested with for 32-bit little-endian MIPS, as links in
# build/target-sysroots:
#   gnu     packages for the GNU C library: GoogleTest and what the programs are made with, net-snmp too
#   musl    musl, and a file with which the compiler uses it
#   uclibc  uClibc-ng, built from its sources, and a file with which the compiler uses it
# usage: scripts/target_sysroots.sh
#
# Debian packages: g++-mipsel-linux-gnu make xz-utils
# Each is made once, in ${XDG_CACHE_HOME:-~/.cache}/oltmgmt, and again when its recipe changes.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/mipsel_packages.sh

cache=${XDG_CACHE_HOME:-$HOME/.cache}/oltmgmt
links=build/target-sysroots

# Recipes. Each works in an empty folder with the package state ready and fills ./sysroot, which
# will lie at $1.

make_gnu() {
  # From libsnmp-dev on, net-snmp and what its headers and its two libraries need.
  download_packages libasio-dev libcli11-dev nlohmann-json3-dev libfmt-dev libfmt9 \
    libedit-dev libedit2 libbsd0 libmd0 libtinfo6 libgtest-dev libgmock-dev \
    libsnmp-dev libsnmp40 libssl-dev libssl3 libperl5.36 libcrypt1 libwrap0 libnsl2 libtirpc3 \
    libgssapi-krb5-2 libkrb5-3 libk5crypto3 libkrb5support0 libkeyutils1 libcom-err2
  local package
  for package in *.deb; do dpkg -x "$package" sysroot; done
  # The compiler looks in one folder for headers.
  cp -a sysroot/usr/include/mipsel-linux-gnu/. sysroot/usr/include/
}

make_musl() {
  download_packages musl musl-dev
  local package
  for package in *.deb; do dpkg -x "$package" sysroot; done
  # The package leaves it to its own compiler to look in two folders.
  ln -s ../../../lib/mipsel-linux-musl/libc.so sysroot/usr/lib/mipsel-linux-musl/
  # The C++ headers ask for the version of the GNU C library.
  write_settings "$1/usr/include/mipsel-linux-musl" "-D__GLIBC_PREREQ(a,b)=0" \
    "$1/usr/lib/mipsel-linux-musl" /lib/ld-musl-mipsel.so.1 -lc
}

make_uclibc() {
  download_packages uclibc-source
  dpkg -x uclibc-source_*.deb .
  tar xf usr/src/uClibc-ng-*.tar.xz
  local headers=$PWD/headers out=$PWD/sysroot option part
  mkdir "$headers"
  for part in linux asm asm-generic mtd misc; do
    cp -a "/usr/mipsel-linux-gnu/include/$part" "$headers/"
  done
  (
    cd uClibc-ng-*
    make ARCH=mips defconfig
    for option in HAS_NO_THREADS ARCH_BIG_ENDIAN ARCH_WANTS_BIG_ENDIAN LDSO_LDD_SUPPORT \
      LDSO_CACHE_SUPPORT UCLIBC_STATIC_LDCONFIG UCLIBC_HAS_{CRYPT,CRYPT_IMPL,REGEX,GLOB,FNMATCH} \
      UCLIBC_HAS_{SHADOW,SYSLOG,XATTR,PROFILING,PTY,IPV4}; do
      set_option "$option" n
    done
    for option in ARCH_LITTLE_ENDIAN ARCH_WANTS_LITTLE_ENDIAN UCLIBC_HAS_THREADS_NATIVE UCLIBC_HAS_WCHAR; do
      set_option "$option" y
    done
    set_option KERNEL_HEADERS "\"$headers\""
    set_option RUNTIME_PREFIX '"/"'
    set_option DEVEL_PREFIX '"/usr/"'
    set_option CROSS_COMPILER_PREFIX '"mipsel-linux-gnu-"'
    make ARCH=mips oldconfig </dev/null
    make ARCH=mips CROSS_COMPILE=mipsel-linux-gnu- PREFIX="$out" -j"$(nproc)" install
  ) >build.log 2>&1 || { tail build.log >&2; return 1; }
  cp -a "$headers"/. sysroot/usr/include/
  # The C++ headers ask for two functions that this C library does not have.
  echo 'extern "C" { int at_quick_exit(void (*)(void)); [[noreturn]] void quick_exit(int); }' \
    >sysroot/absent_functions.h
  write_settings "$1/usr/include" "-include $1/absent_functions.h" \
    "$1/usr/lib" /lib/ld-uClibc.so.1 \
    "$1/lib/libc.so.0 $1/usr/lib/uclibc_nonshared.a --as-needed $1/lib/ld-uClibc.so.1 --no-as-needed"
}

# Sets an option of a kernel-style configuration; n takes it out.
set_option() {
  sed -i -e "/^$1=/d" -e "/^# $1 is not set/d" .config
  if [ "$2" = n ]; then echo "# $1 is not set" >>.config; else echo "$1=$2" >>.config; fi
}

# Makes the compiler for the GNU C library one for another C library, its own headers alone.
# usage: write_settings C_HEADERS CXX_OPTIONS LIBRARY_FOLDER LOADER LIBRARIES
write_settings() {
  local cxx=/usr/mipsel-linux-gnu/include/c++/12
  cat >sysroot/gcc.settings <<END
*cpp:
-nostdinc -idirafter $1 -idirafter include%s

*cc1plus:
-nostdinc++ -isystem $cxx -isystem $cxx/mipsel-linux-gnu $2

*startfile:
%{!shared:$3/Scrt1.o} $3/crti.o

*endfile:
$3/crtn.o

*link_libgcc:
-L$3 %D

*lib:
$5

*libgcc:
-lgcc

*link:
-nostdlib %{shared:-shared} %{!shared:-dynamic-linker $4}

END
}

make_sysroot() (
  echo "target_sysroots.sh: making the sysroot $1, once (uclibc is compiled, which takes some minutes)"
  work=$(mktemp -d "$cache/fetch.XXXXXX")
  trap 'rm -rf "$work"' EXIT
  cd "$work"
  mkdir sysroot
  mipsel_packages .
  "make_$1" "$2"
  mv sysroot "$2"
)

# The name says which recipe it was made by. What was built with another one is worthless.
provide() {
  local folder
  folder=$cache/sysroot-$1-$(declare -f "make_$1" set_option write_settings | sha256sum | cut -c 1-12)
  [ -d "$folder" ] || make_sysroot "$1" "$folder"
  [ "$(readlink "$links/$1")" = "$folder" ] || rm -rf "build/target-$1"
  ln -sfn "$folder" "$links/$1"
}

mkdir -p "$cache" "$links"
# One at a time: several builds may want them at once.
exec 9>"$cache/lock"
flock --nonblock 9 || {
  echo "target_sysroots.sh: waiting for another build that makes sysroots"
  flock 9
}
for name in gnu musl uclibc; do provide "$name"; done
