#!/bin/bash
# usage: exports.sh SRC LIBRARY HEADERS LIBRARY_OBJECT... -- TEST_OBJECT...
#
# The tests link the library's object code, so they would not notice a class that lacks its export mark. This compares the names
# that they use with those that the shared LIBRARY shows:
# - a name is missing when tests use it, a source with an installed header defines it, and the library hides it;
# - a name has leaked when a source whose header (same name, .h) is not installed below HEADERS defines it and the library shows it.
set -eu -o pipefail
src=$1 library=$2 headers=$3
shift 3

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"

# Strong definitions only: a template or an inline function is compiled into the host.
names_of() { nm --defined-only --extern-only "$@" | awk 'NF == 3 && $2 ~ /^[TDBR]$/ { print $3 }' | sort -u; }

touch public private
while [ "$1" != -- ]; do
  name=${1#*mendexlib.dir/}
  name=${name%.cpp.o}
  kind=public
  [ -f "$headers/$name.h" ] || [ ! -f "$src/$name.h" ] || kind=private
  names_of "$1" >>$kind
  shift
done
shift
for object in "$@"; do
  case "$object" in *.o) nm --undefined-only "$object" ;; esac  # not the precompiled header
done | awk 'NF == 2 { print $2 }' | sort -u >used
nm -D --defined-only "$library" | awk '{ print $3 }' | sort -u >shown
sort -u public -o public
sort -u private -o private

comm -12 used public >used_public
comm -23 used_public shown >missing
comm -12 private shown >leaked
[ -s used_public ] || { echo "the tests use nothing of the library: wrong objects?"; exit 1; }
echo "$(wc -l <used_public) exported names are used, $(wc -l <private) names are private"
if [ -s missing ]; then echo "used by tests but not exported:"; c++filt <missing; fi
if [ -s leaked ]; then echo "exported by a source whose header is private:"; c++filt <leaked; fi
[ ! -s missing ] && [ ! -s leaked ]
