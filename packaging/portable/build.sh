#!/bin/sh
# The portable archive: the program folder with every library that a bare system lacks.
# Usage: packaging/portable/build.sh ROOT OUT VERSION
set -eu
root=$1 out=$2 version=$3
# shellcheck source=packaging/stage.sh
. "$root/packaging/stage.sh"
name=TARNPrep-$version-linux-$(uname -m)
stage=$out/portable/TARNPrep-$version
rm -rf "$out/portable"

# The program folder itself is what users unpack; the commands lie in it too.
stage "$out/portable" program tools desktop documents
mv "$out/portable/lib/tarnprep" "$stage"
mv "$out/portable/bin"/* "$stage/"
mv "$out/portable/share" "$stage/share"
rmdir "$out/portable/lib" "$out/portable/bin"
mv "$stage"/share/applications/*.desktop "$stage/share/"
mv "$stage/share/mime/packages/tarnprep.xml" "$stage/share/tarnprep-mime.xml"
mv "$stage"/share/doc/tarnprep/LICENSE* "$stage/"
rm -r "$stage/share/applications" "$stage/share/mime" "$stage/share/metainfo" "$stage/share/doc"
mkdir "$stage/lib"
cp "$root/packaging/portable/README.txt" "$root/packaging/portable/install" \
    "$root/packaging/portable/uninstall" "$stage/"

# A font for systems without any.
mkdir -p "$stage/fonts"
cp /usr/share/fonts/truetype/dejavu/DejaVuSans.ttf \
    /usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf "$stage/fonts/"
cp /usr/share/doc/fonts-dejavu-core/copyright "$stage/fonts/LICENSE"

# Qt's plug-ins: windows, keyboards, pictures and printing.
plugins=$(qmake6 -query QT_INSTALL_PLUGINS)
for plugin in platforms/libqxcb.so platforms/libqoffscreen.so platforms/libqminimal.so \
    platforms/libqwayland-generic.so platforms/libqwayland-egl.so \
    wayland-shell-integration/libxdg-shell.so \
    platforminputcontexts/libcomposeplatforminputcontextplugin.so \
    platforminputcontexts/libibusplatforminputcontextplugin.so \
    xcbglintegrations/libqxcb-glx-integration.so imageformats/libqjpeg.so \
    printsupport/libcupsprintersupport.so; do
    if [ -f "$plugins/$plugin" ]; then
        mkdir -p "$stage/plugins/$(dirname $plugin)"
        cp "$plugins/$plugin" "$stage/plugins/$plugin"
    fi
done
printf '[Paths]\nPrefix = .\nPlugins = plugins\n' >"$stage/qt.conf"

# The C library and what belongs to it stay the system's own.
own='^(ld-linux.*|libc|libm|libdl|libpthread|librt|libresolv|libnss_.*)\.so'
find "$stage" -type f \( -name tarnprep -o -name tarnreview -o -name fcdtool -o -name jetsql -o -name '*.so' \) -exec ldd {} + |
    awk '$2 == "=>" && $3 ~ /^\// { print $3 }' | sort -u | while read -r library; do
    if ! basename "$library" | grep -Eq "$own"; then
        cp -L "$library" "$stage/lib/"
    fi
done
strip --strip-unneeded "$stage"/lib/*.so* 2>/dev/null || true

tar -C "$out/portable" --owner=0 --group=0 --sort=name -czf "$out/$name.tar.gz" \
    "TARNPrep-$version"
echo "$out/$name.tar.gz"
