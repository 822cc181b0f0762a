#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
#
# Builds Qt for Windows from Debian's source package of qtbase into a folder of your choice.
# usage: build-qt.sh FOLDER
#
# The outcome is static: a program that links it is one file that needs nothing but Windows. It is
# done once; a folder that holds such a Qt already is taken as it is. FOLDER appears when all of
# it is there. JOBS (environment) is the number of compilers at a time.
set -eu

if [ $# -ne 1 ]; then
    echo "usage: $0 FOLDER" >&2
    exit 2
fi
mkdir -p "$(dirname "$1")"
folder=$(cd "$(dirname "$1")" && pwd)/$(basename "$1")
package=qtbase-opensource-src
release=5.15.8
target=x86_64-w64-mingw32
jobs=${JOBS:-$(nproc)}

if [ -e "$folder/lib/cmake/Qt5/Qt5Config.cmake" ]; then
    echo "$folder holds a Qt already; it is taken as it is."
    exit 0
fi
if [ -e "$folder" ]; then
    echo "$folder is there and holds no Qt; name another folder or remove it." >&2
    exit 1
fi

"$(dirname "$0")/../../script/bootstrap" qt

started=$(date +%s)
echo "Building Qt $release for Windows into $folder. This takes about 40 minutes on two cores"
echo "and 3 GB of disk while it lasts; the folder has about 100 MB then."

work=$(mktemp -d "$folder.build.XXXXXX")
trap 'rm -rf "$work"' EXIT
trap 'exit 1' HUP INT TERM

# An apt of our own, with the source packages of Debian 12; the machine's lists stay untouched.
mkdir -p "$work/apt/lists/partial" "$work/apt/cache/archives/partial" "$work/apt/parts"
echo "deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg]" \
    "${DEBIAN_MIRROR:-http://deb.debian.org/debian} bookworm main" >"$work/apt/sources.list"
cat >"$work/apt/apt.conf" <<END
Dir::Etc::SourceList "$work/apt/sources.list";
Dir::Etc::SourceParts "$work/apt/parts";
Dir::State::Lists "$work/apt/lists";
Dir::Cache "$work/apt/cache";
APT::Sandbox::User "";
END
cd "$work"
APT_CONFIG=$work/apt/apt.conf apt-get -q update
version=$(APT_CONFIG=$work/apt/apt.conf apt-cache showsrc $package |
    sed -n "s/^Version: \($release.*\)/\1/p" | sort -V | tail -n 1)
if [ -z "$version" ]; then
    echo "Debian has no source of $package $release." >&2
    exit 1
fi
APT_CONFIG=$work/apt/apt.conf apt-get -q source "$package=$version"

# Qt asks for the compilers by their plain names, which on a machine with both thread models may
# mean the other one.
mkdir bin
for tool in gcc g++; do
    ln -s "$(command -v $target-$tool-posix)" "bin/$target-$tool"
done
PATH=$work/bin:$PATH
export PATH

# Without the tablet feature, since the source package lacks its headers and the platform plugin
# does not compile without them.
mkdir build
cd build
"../$package-$release+dfsg/configure" \
    -opensource -confirm-license -prefix "$folder" \
    -xplatform win32-g++ -device-option CROSS_COMPILE=$target- \
    -release -static -static-runtime \
    -schannel -no-openssl -no-opengl -no-dbus -no-icu \
    -qt-zlib -qt-libpng -qt-libjpeg -qt-pcre -qt-harfbuzz -qt-freetype \
    -no-feature-sql -no-feature-concurrent -no-feature-tabletevent \
    -nomake examples -nomake tests

# In one call: an install of its own would make the configuration headers anew and compile all of
# it once more.
make -j"$jobs" install INSTALL_ROOT="$work/root"

# The linker of Linux tells these names by case.
find "$work/root" -name '*.prl' \
    -exec sed -i -e 's/-lSecur32/-lsecur32/g' -e 's/-lCrypt32/-lcrypt32/g' {} +

mv "$work/root$folder" "$folder"
minutes=$((($(date +%s) - started) / 60))
echo "Qt $version for Windows is in $folder; it took $minutes minutes."
echo "QT_WINDOWS_DIR=$folder cmake --preset windows"
