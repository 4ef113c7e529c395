#!/usr/bin/env bash
# Installs the Debian packages that a task needs: install-packages.sh build|test|bench|fuzz|run ...
# Packages that are there already cost nothing; without root rights sudo is asked.
set -euo pipefail

build=(ca-certificates g++ cmake ninja-build pkg-config
    qt6-base-dev qt6-base-dev-tools qt6-svg-dev libgl-dev libxcb1-dev
    libexiv2-dev libjpeg62-turbo-dev libpng-dev libtiff-dev libgif-dev libimagequant-dev liblcms2-dev libhwy-dev
    libheif-dev libraw-dev libjxl-dev libopenjp2-7-dev libseccomp-dev)
run=(qt6-translations-l10n qt6-image-formats-plugins libqt6svg6 qt6-qpa-plugins qt6-wayland xdg-utils)
test=(libgtest-dev libgmock-dev libimage-exiftool-perl clang-format python3
    libheif-examples libavif-bin libjxl-tools libopenjp2-tools webp
    dbus-daemon xvfb xauth openbox xdotool fonts-dejavu-core)
fuzz=(clang libclang-rt-dev)
bench=(libbenchmark-dev libopencv-core-dev libopencv-imgproc-dev libjpeg-turbo-progs time xvfb
    libheif-examples libavif-bin libjxl-tools libopenjp2-tools webp)

wanted=()
for task in "$@"; do
    case "$task" in
    build) wanted+=("${build[@]}") ;;
    run) wanted+=("${run[@]}") ;;
    test) wanted+=("${test[@]}") ;;
    fuzz) wanted+=("${fuzz[@]}") ;;
    bench) wanted+=("${bench[@]}") ;;
    *)
        echo "install-packages.sh: unknown task '$task'" >&2
        exit 2
        ;;
    esac
done

missing=()
for package in "${wanted[@]}"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    as_root=(sudo)
fi
echo "Installing: ${missing[*]}"
"${as_root[@]}" apt-get update -q
DEBIAN_FRONTEND=noninteractive "${as_root[@]}" apt-get install -y -q --no-install-recommends "${missing[@]}"
