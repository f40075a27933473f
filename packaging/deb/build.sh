#!/bin/sh
# The Debian package. Usage: packaging/deb/build.sh ROOT OUT VERSION
set -eu
root=$1 out=$2 version=$3
# shellcheck source=packaging/stage.sh
. "$root/packaging/stage.sh"
architecture=$(dpkg --print-architecture)
stage=$out/deb
rm -rf "$stage"

stage "$stage/usr" program launcher tools desktop documents
printf '%s\n' "$version" >"$stage/usr/lib/tarnprep/VERSION"
documents=$stage/usr/share/doc/tarnprep
rm "$documents/LICENSE"
cat "$root/LICENSE" >"$documents/copyright"
printf '\nOn Debian systems the GNU General Public License, version 3, is in\n%s\n' \
    /usr/share/common-licenses/GPL-3 >>"$documents/copyright"
rm "$documents/LICENSE.charts"
gzip -9n "$stage"/usr/share/man/man1/*.1 "$documents/CHANGELOG.md"
released=$(sed -n 's/.*<release .*date="\([0-9-]*\)".*/\1/p' "$root/packaging/tarnprep.metainfo.xml" |
    head -n 1)
printf 'tarnprep (%s) unstable; urgency=medium\n\n  * %s\n\n -- %s  %s\n' "$version" \
    "A new release; CHANGELOG.md tells what is new in it." \
    "The TARN Prep contributors <maintainers@tarnprep.invalid>" "$(LC_ALL=C date -u -R -d "$released")" |
    gzip -9n >"$documents/changelog.gz"
find "$stage" -type d -exec chmod 755 {} +
find "$stage/usr/lib/tarnprep" "$stage/usr/share" -type f -exec chmod 644 {} +
chmod 755 "$stage/usr/lib/tarnprep/tarnprep" "$stage/usr/lib/tarnprep/tarnreview" \
    "$stage/usr/lib/tarnprep/fcdtool" "$stage"/usr/bin/*

# What the program and the tools are linked with, as Debian's own tool finds it.
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/debian"
printf 'Source: tarnprep\n\nPackage: tarnprep\nArchitecture: any\n' >"$work/debian/control"
libraries=$(cd "$work" && dpkg-shlibdeps -O -l/nonexistent "$stage/usr/lib/tarnprep/tarnprep" \
    "$stage/usr/lib/tarnprep/tarnreview" "$stage"/usr/lib/tarnprep/*.so \
    "$stage/usr/bin/jetdoctor" "$stage/usr/bin/jetdump" "$stage/usr/bin/jetsql" \
    "$stage/usr/bin/fcdtool" 2>/dev/null |
    sed -n 's/^shlibs:Depends=//p')

mkdir -p "$stage/DEBIAN"
size=$(du -k -s "$stage/usr" | cut -f1)
sed -e "s/@VERSION@/$version/" -e "s/@ARCHITECTURE@/$architecture/" -e "s/@SIZE@/$size/" \
    -e "s/@LIBRARIES@/$libraries/" "$root/packaging/deb/control.in" >"$stage/DEBIAN/control"
(cd "$stage" && find usr -type f -print0 | sort -z | xargs -0 md5sum >DEBIAN/md5sums)
fakeroot dpkg-deb -Zxz --build "$stage" "$out/tarnprep_${version}_$architecture.deb" >/dev/null
echo "$out/tarnprep_${version}_$architecture.deb"
