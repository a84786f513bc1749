#!/bin/bash
# usage: clean_checkout.sh ROOT FOLDER: copies what the checkout at ROOT tracks to FOLDER and uses the launcher there.
#
# A file that was never added to the repository is missing from the copy, so that its absence shows here.
set -u
root=$1 folder=$2
fail() { echo "FAILED: $*"; exit 1; }

rm -rf "$folder"
mkdir -p "$folder/checkout" "$folder/else where"
if git -C "$root" rev-parse >/dev/null 2>&1; then
  git -C "$root" ls-files -z | (cd "$root" && xargs -0 cp --parents -t "$folder/checkout") || fail "copying"
else
  tar -C "$root" --exclude=./build -cf - . | tar -C "$folder/checkout" -xf - || fail "copying"
fi

# Used as people do: through a link, from another folder. Its standard output belongs to the program alone.
cd "$folder/else where" || exit 1
ln -s ../checkout/mendex linked
./linked --version >first.out 2>first.err || fail "first run: $(cat first.err)"
[ -s first.out ] || fail "the program printed no version"
[ -s first.err ] || fail "the first run does not say what it is doing"

./linked --version >second.out 2>second.err || fail "second run"
cmp first.out second.out || fail "building has left traces on standard output"
[ ! -s second.err ] || fail "nothing has changed, and yet: $(cat second.err)"

touch ../checkout/apps/mendex/text.cpp
./linked --version >third.out 2>third.err || fail "run after an edit"
[ -s third.err ] || fail "an edited source was not noticed"

# The program's own exit code comes through.
./linked --no-such-option >/dev/null 2>&1
[ $? -eq 2 ] || fail "wrong usage does not end with 2"
