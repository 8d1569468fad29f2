#!/bin/sh
# SPDX-License-Identifier: ISC
# run-target.sh PROGRAM SEEDS: feeds a target for PUFFGUARD_FUZZ_SECONDS (5). What it finds out
# about its reader is kept beside the program, so that a later run goes on from there; an input that
# breaks something is kept there too, and named.
set -eu
program=$1
seeds=$2
learnt=$program.learnt
mkdir -p "$learnt"
[ ! -d /dev/shm ] || export TMPDIR=/dev/shm
exec "$program" -max_total_time="${PUFFGUARD_FUZZ_SECONDS:-5}" -timeout=10 -rss_limit_mb=1024 \
    -max_len=65536 -print_final_stats=1 -artifact_prefix="$program.broken-" "$learnt" "$seeds"
