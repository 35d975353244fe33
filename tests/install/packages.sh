#!/bin/bash
# Packs a build into Debian packages and checks that each holds what it should, and nothing twice.
#   packages.sh BUILD_DIR
set -euo pipefail
build=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cpack --config "$build/CPackConfig.cmake" -B "$work" >/dev/null

package() { echo "$work/$1"_*.deb; }
# Readers of a pipe read it to its end: the writer would fail otherwise, now and then.
filesOf() { dpkg-deb --fsys-tarfile "$(package "$1")" | tar t | grep -v '/$'; }
# holds PACKAGE PATTERN...: for each pattern the package has a file.
holds() {
  local name=$1 list pattern
  shift
  list=$(filesOf "$name")
  for pattern in "$@" "usr/share/doc/$name/copyright" "usr/share/doc/$name/changelog.Debian.gz"; do
    grep -q "^\./$pattern\$" <<<"$list" || { echo "$name lacks $pattern"; exit 1; }
  done
}
dependsOn() {
  dpkg-deb -f "$(package "$1")" Depends | grep "$2" >/dev/null ||
    { echo "$1 does not depend on $2"; exit 1; }
}

library=$(cd "$work" && ls liblumora-filters[0-9]*.deb)
library=${library%%_*}
packages=("$library" liblumora-filters-dev)
holds "$library" 'usr/lib/.*liblumora_filters\.so\.[0-9]*' usr/share/lumora_filters/mixIm.dat \
  usr/share/lumora_filters/filter.xml
holds liblumora-filters-dev usr/include/lumora/filters.h 'usr/lib/.*liblumora_filters\.a' \
  'usr/lib/.*liblumora_filters\.so' 'usr/lib/.*pkgconfig/lumora_filters\.pc' \
  'usr/lib/.*cmake/lumora_filters/lumora_filters-config\.cmake'
dependsOn "$library" libc6
dependsOn liblumora-filters-dev "$library (= "
if [[ -e $(package lumora) ]]; then
  packages+=(lumora)
  holds lumora usr/bin/lumora usr/share/man/man1/lumora.1.gz \
    usr/share/bash-completion/completions/lumora usr/share/zsh/vendor-completions/_lumora \
    usr/share/fish/vendor_completions.d/lumora.fish
  dependsOn lumora "$library (= "
  dependsOn lumora libvips
fi
if [[ -e $(package python3-lumora) ]]; then
  packages+=(python3-lumora)
  holds python3-lumora 'usr/lib/python3/dist-packages/lumora/_core\.abi3\.so' \
    'usr/lib/python3/dist-packages/lumora/py\.typed'
  dependsOn python3-lumora "$library (= "
  dependsOn python3-lumora python3
fi
if [[ -e $(package lumora-frei0r) ]]; then
  packages+=(lumora-frei0r)
  holds lumora-frei0r usr/lib/frei0r-1/lumora_fugu.so usr/lib/frei0r-1/lumora_tilt_shift.so
  dependsOn lumora-frei0r "$library (= "
fi
if [[ -e $(package gstreamer1.0-lumora) ]]; then
  packages+=(gstreamer1.0-lumora)
  holds gstreamer1.0-lumora 'usr/lib/.*gstreamer-1.0/libgstlumora.so' \
    usr/share/gnome-video-effects/lumora-fugu.effect
  dependsOn gstreamer1.0-lumora "$library (= "
  dependsOn gstreamer1.0-lumora libgstreamer-plugins-base1.0-0
fi

twice=$(for name in "${packages[@]}"; do filesOf "$name"; done | sort | uniq -d)
[[ -z $twice ]] || { echo "in two packages: $twice"; exit 1; }
# Everything an installation has is in some package (documents of the packages apart).
DESTDIR=$work/all cmake --install "$build" --prefix /usr >/dev/null
diff <(cd "$work/all" && find . -type f -o -type l | sed 's/lumora\.1$/lumora.1.gz/' | sort) \
  <(for name in "${packages[@]}"; do filesOf "$name"; done | grep -v '/share/doc/' | sort)
synopses=$(for name in "${packages[@]}"; do
  dpkg-deb -f "$(package "$name")" Description | sed -n 1p
done | sort -u | wc -l)
[[ $synopses == "${#packages[@]}" ]] || { echo "packages share a synopsis"; exit 1; }
