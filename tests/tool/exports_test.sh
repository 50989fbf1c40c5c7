#!/bin/sh
# What callbacks may be found among is exported, and nothing besides; what has a version is the C library's.
set -eu
exported=$(nm -D --defined-only "$1" | awk '{ print $3 }' | grep -v @ || true)
echo "$exported" | grep -qx isi_trace
if echo "$exported" | grep -v '^isi_'; then
    echo "exported besides" >&2
    exit 1
fi
