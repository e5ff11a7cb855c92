#!/usr/bin/env bash
# Signs the application, puts it into a disk image beside a link to Applications, and has it notarised:
#   sign.sh Murmeli.app IDENTITY [PROFILE]
# IDENTITY is a "Developer ID Application" certificate of the keychain. PROFILE is what `xcrun notarytool
# store-credentials` has stored; without it the image is signed only.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
die() { printf '%s\n' "$*" >&2; exit 1; }

(($# == 2 || $# == 3)) || die "Usage: $0 Murmeli.app IDENTITY [PROFILE]"
app=${1%/} identity=$2 profile=${3:-}
[[ $app == *.app && -x $app/Contents/MacOS/Murmeli ]] || die "$app is not Murmeli's bundle."
[[ $identity == 'Developer ID Application: '* ]] || die 'Others can only open what a "Developer ID Application: …" has signed.'
for tool in codesign hdiutil xcrun plutil; do
    command -v "$tool" >/dev/null || die "$tool is missing: this takes macOS with Xcode's command line tools."
done
security find-identity -v -p codesigning | grep -qF "\"$identity\"" || die "The keychain holds no $identity."

sign() { codesign --force --timestamp --options runtime --sign "$identity" "$@"; }
# From the inside out: what is signed holds the signatures of what it contains.
while IFS= read -r -d '' part; do
    sign "$part"
done < <(find "$app/Contents" \( -name '*.dylib' -o -name '*.so' \) -type f -print0)
while IFS= read -r -d '' part; do
    sign "$part"
done < <(find "$app/Contents/Frameworks" -maxdepth 1 -name '*.framework' -print0 2>/dev/null)
sign --entitlements "$here/Murmeli.entitlements" "$app"
codesign --verify --deep --strict --verbose=2 "$app"

version=$(plutil -extract CFBundleShortVersionString raw "$app/Contents/Info.plist")
image=$(dirname "$app")/Murmeli-$version.dmg
stage=$(mktemp -d)
trap 'rm -rf "$stage"' EXIT
cp -R "$app" "$stage/"
ln -s /Applications "$stage/Applications"
hdiutil create -ov -volname Murmeli -srcfolder "$stage" -format UDZO "$image"
codesign --force --timestamp --sign "$identity" "$image"
if [[ -n $profile ]]; then
    xcrun notarytool submit "$image" --keychain-profile "$profile" --wait
    xcrun stapler staple "$image"
fi
printf 'The image is %s\n' "$image"
