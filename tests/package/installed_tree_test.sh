#!/usr/bin/env bash
# Installs, moves the tree, seals a text with the moved command, and builds the examples against the moved
# package by pkg-config and by CMake; every program lists the entries that were sealed.
# usage: installed_tree_test.sh SOURCE BUILD CMAKE
set -euo pipefail
source_dir=$1 build_dir=$2 cmake=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$cmake" --install "$build_dir" --prefix "$work/first" >"$work/install.log"
mv "$work/first" "$work/moved"
if grep -rIl --include='*.cmake' --include='*.pc' -e "$work/first" -e "$build_dir" "$work/moved/lib"; then
  echo "the package names the place where it was built or first installed" >&2
  exit 1
fi

export KESTRIONDIR=$work/moved
cat >"$work/plain" <<'TEXT'
stores_1 dbadmin rosebud primary
stores_2 dbadmin xanadu secondary
TEXT
"$KESTRIONDIR/bin/pwsealtool" -k opensesame -e "$work/plain"

flags=$(PKG_CONFIG_PATH=$KESTRIONDIR/lib/pkgconfig pkg-config --cflags --libs kestrion)
# The flags are words on purpose.
# shellcheck disable=SC2086
{
  c++ -std=c++20 -o "$work/by_pkg_config" "$source_dir/examples/list_entries.cpp" $flags
  cc -std=c11 -o "$work/by_pkg_config_c" "$source_dir/examples/list_entries_c.c" $flags
}
"$cmake" -S "$source_dir/tests/package/consumer" -B "$work/consumer" -G Ninja \
  -DCMAKE_PREFIX_PATH="$KESTRIONDIR" -DEXAMPLES="$source_dir/examples" >"$work/configure.log"
"$cmake" --build "$work/consumer" >"$work/build.log" || { cat "$work/build.log"; exit 1; }

for program in by_pkg_config by_pkg_config_c consumer/list_entries consumer/list_entries_c; do
  "$work/$program" >"$work/listing"
  for word in stores_1 rosebud stores_2 xanadu secondary; do
    grep -q "$word" "$work/listing" || { echo "$program lists no $word:"; cat "$work/listing"; exit 1; }
  done
done
echo "installed, moved, built by pkg-config and by CMake"
