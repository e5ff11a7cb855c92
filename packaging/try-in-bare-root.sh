#!/usr/bin/env bash
# Installs a package in a bare Debian 12 of its own; there it has to start with nothing beside its own
# dependencies, then to pass journeys, then to leave without a trace. As root:
#     packaging/try-in-bare-root.sh DEB [PACKAGE…]      with the packages that the journeys' desktop takes
set -euo pipefail

# A release build knows its addresses from the build, so these journeys need no web service.
JOURNEYS=(test_starts test_recording test_meetings test_settings.{Windows,Leaving})

say() { printf '\033[1m%s\033[0m\n' "$*"; }
die() { printf '%s\n' "$*" >&2; exit 1; }

if [[ ${1:-} != --inside ]]; then
    ((EUID == 0)) || die 'This takes root.'
    deb=$(realpath "${1:?which package?}")
    shift
    cd "$(dirname "${BASH_SOURCE[0]}")/.."
    folder=$(mktemp -d)
    trap 'rm -rf --one-file-system "$folder"' EXIT
    # Whatever is mounted or started inside goes with these namespaces, however this ends.
    unshare --mount --pid --fork --kill-child --mount-proc packaging/try-in-bare-root.sh --inside "$folder" "$deb" "$@"
    exit
fi

folder=$2 root=$2/root deb=$3
shift 3

# Commands in there: as root, and as an ordinary user; with nothing of our environment.
bare=(chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive)
person=(chroot --userspec=person:person "$root"
    env -i PATH=/usr/bin:/bin HOME=/home/person XDG_RUNTIME_DIR=/run/person LANG=C.UTF-8 LANGUAGE=ru)
install() {
    "${bare[@]}" apt-get install -qq --no-install-recommends "$@" >>"$folder/log" 2>&1 ||
        { tail -n 30 "$folder/log"; die "Not installable: $*"; }
}

say 'Making a bare Debian 12'
debootstrap --variant=minbase bookworm "$root" >"$folder/log" 2>&1 || { tail "$folder/log"; exit 1; }
mount -t proc proc "$root/proc"
printf '#!/bin/sh\nexit 101\n' >"$root/usr/sbin/policy-rc.d" # no services in there
chmod 755 "$root/usr/sbin/policy-rc.d"
"${bare[@]}" apt-get update -qq
"${bare[@]}" useradd --create-home person
"${bare[@]}" install -d -m 700 -o person -g person /run/person /home/person/checkout

say "Installing $(basename "$deb") and what it depends on"
cp "$deb" "$root/tmp/murmeli.deb"
install /tmp/murmeli.deb
"${bare[@]}" dpkg --verify murmeli
"${bare[@]}" dpkg --listfiles murmeli >"$folder/files"
printf '%s packages in there\n' "$("${bare[@]}" dpkg-query -f '.' -W | wc -c)"

say 'A first start with nothing else there: the setup has to open, and nobody to complain'
Xvfb -displayfd 3 -screen 0 1280x900x24 3>"$folder/display" >"$folder/xvfb.log" 2>&1 &
display=$!
for ((i = 0; i < 100; ++i)); do [[ -s $folder/display ]] && break || sleep 0.1; done
export DISPLAY=":$(<"$folder/display")"
"${person[@]}" DISPLAY="$DISPLAY" murmeli >"$folder/said" 2>&1 &
program=$!
for ((i = 0; i < 300; ++i)); do
    window=$(xdotool search --onlyvisible --name '^Готовим Murmeli$' 2>/dev/null) && break
    kill -0 "$program" 2>/dev/null || { cat "$folder/said"; die 'Murmeli has ended by itself.'; }
    sleep 0.1
done
sleep 3 # for complaints that come late
cat "$folder/said"
[[ $window ]] || die 'The setup has not opened.'
kill "$program"
wait "$program" || die "Murmeli has ended with $?."
kill "$display" && wait "$display" || true
[[ ! -s $folder/said ]] || die 'Murmeli has complained, see above.'

say "Journeys: ${JOURNEYS[*]}"
qml() { "${bare[@]}" dpkg-query -W -f '${Package}\n' 'qml6-module-*' 'libqt6*' | sort; }
before=$(qml)
install python3 "$@"
# The desktop must bring no part of Qt that the package forgot to ask for.
[[ $(qml) == "$before" ]] || die "The journeys' desktop has brought parts of Qt along: $(diff <(echo "$before") <(qml))"
cp -r tests sandbox "$root/home/person/checkout"
"${bare[@]}" chown -R person:person /home/person/checkout
# A network of their own, with nobody at the sandbox's addresses.
unshare --net sh -c 'ip link set lo up && exec "$@"' - "${person[@]}" MURMELI_BIN=/usr/bin/murmeli \
    sh -c 'cd ~/checkout/tests/journeys && exec /usr/bin/python3 -m unittest "$@"' - "${JOURNEYS[@]}"

say 'Removing it'
"${bare[@]}" apt-get purge -qq murmeli >>"$folder/log" 2>&1
left=$(while read -r path; do [[ -d $root$path || ! -e $root$path ]] || echo "$path"; done <"$folder/files")
[[ -z $left ]] || die "Left behind: $left"
say 'It installs, starts, works and leaves.'
