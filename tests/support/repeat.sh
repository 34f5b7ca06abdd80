#!/usr/bin/env bash
# repeat.sh PROGRAM: runs a test program that uses devices or servers in real time. Other load on the machine can delay
# them for seconds, so the tests that fail run again, up to four times after growing pauses. A program that ends without
# its list of failed tests runs again as a whole. The output shows all runs; the exit status is that of the last one.
readonly program="$1" pauses=(2 5 15 30)
output="$(mktemp)"
trap 'rm -f "$output"' EXIT

# The names at the end of the output, as a filter.
failed_tests() {
    sed -nE 's/^\[  FAILED  \] ([^ ,]+\.[^ ,]+)(,.*)?$/\1/p' "$output" | sort -u | paste -sd ':'
}

filter=()
for ((run = 0; run <= ${#pauses[@]}; ++run)); do
    "$program" "${filter[@]}" | tee "$output"
    status=${PIPESTATUS[0]}
    ((status == 0)) && exit 0
    failed="$(failed_tests)"
    if [[ -n "$failed" ]] && grep -q 'listed below:$' "$output"; then
        filter=("--gtest_filter=$failed")
        unset GTEST_TOTAL_SHARDS GTEST_SHARD_INDEX
    fi
    if ((run < ${#pauses[@]})); then
        echo "$program failed with status $status. It runs again after ${pauses[run]} s: ${failed:-all tests}"
        sleep "${pauses[run]}"
    fi
done
exit "$status"
