#!/usr/bin/env bash
# Builds the fuzz targets in build/fuzz, for ctest.
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)"
# shellcheck source=tools/setup/build.sh
source "$root/tools/setup/build.sh"

zuvo_configure "$root" fuzz fuzz
zuvo_build "$root" fuzz
