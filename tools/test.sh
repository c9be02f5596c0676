#!/usr/bin/env bash
# Builds everything and runs the whole test suite (GUI tests offscreen).
set -euo pipefail
cd "$(dirname "$0")/.."
bash tools/install-deps.sh
bash tools/build.sh
cd build
QT_QPA_PLATFORM=offscreen ctest --output-on-failure --timeout 600
