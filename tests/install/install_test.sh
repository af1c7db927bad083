#!/bin/sh
# Installs the library into a new directory, moves the tree elsewhere, and builds and runs a host
# against it.
#   install_test.sh BUILD_DIRECTORY pkg-config|find_package C_COMPILER CMAKE [CFLAGS]
set -eu
build=$1
way=$2
cc=$3
cmake=$4
cflags=${5:-}
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$cmake" --install "$build" --component gri_rdk_cdll --prefix "$work/first" >"$work/install.log"
mv "$work/first" "$work/installed"
installed=$work/installed
library=$(dirname "$(find "$installed" -name 'libgri_rdk_cdll.so')")
# All names lead to one file.
for name in libgri_rdk_cdll.so libgri_rdk_cdll.so.7 gri_rdk_cdll.so; do
  [ -e "$library/$name" ] || { echo "$name is missing"; exit 1; }
done

case $way in
  pkg-config)
    PKG_CONFIG_PATH=$library/pkgconfig
    export PKG_CONFIG_PATH
    # shellcheck disable=SC2046,SC2086  # lists of words
    "$cc" $cflags "$here/host.c" $(pkg-config --cflags --libs gri_rdk_cdll) -o "$work/host"
    [ "$(pkg-config --modversion gri_rdk_cdll)" = 7.0.0.2181 ]
    ;;
  find_package)
    "$cmake" -G Ninja -S "$here/find_package" -B "$work/build" -DCMAKE_C_COMPILER="$cc" \
      -DCMAKE_C_FLAGS="$cflags" -DCMAKE_PREFIX_PATH="$installed"
    "$cmake" --build "$work/build"
    cp "$work/build/host" "$work/host"
    ;;
esac
version=$(LD_LIBRARY_PATH=$library "$work/host")
echo "$version"
[ "$version" = "gri_rdk_cdll 7.0.0.2181.HEAD" ]
