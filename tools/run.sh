#!/usr/bin/env bash
# Builds the console and starts it on the database beside the program
# (build/src/tavello.mdb, created on first start).
set -euo pipefail
cd "$(dirname "$0")/.."
bash tools/install-deps.sh
bash tools/build.sh
exec build/src/tavello-admin "$@"
