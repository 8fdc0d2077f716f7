#!/usr/bin/env bash
# Makes the package once more, in a clean clone in another folder, and compares: reproduce.sh [--cached]
# With --cached, ccache gives what the compiler would make again. Then linking and packing are repeated
# only; that a program names its folder or a time shows without a second compilation.
source "$(dirname "$0")/../common.sh"

zip=$(compgen -G 'build/QVX64-*-windows-x64.zip') || fail "there is no zip; scripts/package.sh makes it"
clone=$(mktemp -d) || exit 1
trap 'rm -rf "$clone"' EXIT
if [ "${1:-}" = --cached ]; then
  export CCACHE_BASEDIR=$clone/QVX64
else
  export CCACHE_DISABLE=1
fi
# As this tree is, changes and all; the sources of others are shared.
clone_and_package() {
  git clone -q . "$clone/QVX64" && git diff --binary HEAD >"$clone/changes" &&
    git -C "$clone/QVX64" apply --allow-empty "$clone/changes" &&
    mkdir "$clone/QVX64/build" && ln -s "$PWD/build/third_party" "$clone/QVX64/build" &&
    "$clone/QVX64/scripts/package.sh" --untried >/dev/null
}

clone_and_package || fail "the clone cannot make the package"
cmp "$zip" "$clone/QVX64/$zip" || fail "the same commit gave another zip"
