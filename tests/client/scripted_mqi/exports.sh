#!/usr/bin/env bash
# exports.sh MAP LIBRARY: the library exports the names of the map, unversioned, and no other.
set -euo pipefail
wanted=$(grep -oE 'MQ[A-Z0-9]+' "$1" | sort)
exported=$(nm --dynamic --defined-only "$2" | awk '{print $3}' | sort)
diff <(echo "$wanted") <(echo "$exported")
test "$(wc -l <<<"$exported")" -eq 25
