#!/usr/bin/env bash
# run.sh BUILD [WORKLOAD | --quick] [--benchmark_...]: compares the speed with other libraries on all
# workloads, on a single one or on the small ones, and prints the ratios; without options, the heap
# sizes too. The rounds are kept in BUILD/WORKLOAD.json.
# run.sh BUILD --guard [--renew]: counts instructions instead (guard.sh).
set -euo pipefail
build=$1
shift
texts=(typical mid commented wide deep)
workloads=("${texts[@]}" sorted scaling "${texts[@]/#/files-}" processes)
arguments=("$@")
case ${1:-} in
  --guard) exec "$(dirname "$0")/guard.sh" "$build" "${@:2}" ;;
  --quick) workloads=(typical mid files-typical files-mid processes) ;;
  '' | --*) ;;
  *)
    workloads=("$1")
    arguments=("${@:2}")
    ;;
esac
echo '== ours to others: median (lowest-highest of the rounds), and the goal'
for workload in "${workloads[@]}"; do
  "$build/benchmarks/bench" "$workload" "${arguments[@]}" \
    --benchmark_out="$build/$workload.json" --benchmark_out_format=json
done
echo "== the rounds are in $build/*.json"
[ $# -gt 0 ] || "$build/benchmarks/heap"
