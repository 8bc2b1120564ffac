# SPDX-License-Identifier: MIT
# Reads what Google Benchmark writes as JSON. Prints the medians in the order of the sources, one a
# line: name, items in a second, bytes for each node.
function text_of(line) { sub(/^[^:]*: *"/, "", line); sub(/",?$/, "", line); return line }
function number_of(line) { sub(/^[^:]*: */, "", line); return line + 0 }

/"family_index":/ { family = number_of($0) }
/"per_family_instance_index":/ { instance = number_of($0) }
/"run_name":/ { name = text_of($0); rate = bytes = 0 }
/"aggregate_name":/ { median = text_of($0) == "median" }
/"error_message":/ { print name ": " text_of($0) > "/dev/stderr" }
/"items_per_second":/ { rate = number_of($0) }
/"bytes_per_node":/ { bytes = number_of($0) }
/^ *}/ && rate > 0 {
    if (median)
        print family, instance, name, rate, bytes | "sort -n -k 1,1 -k 2,2 | cut -d \" \" -f 3-"
    rate = 0
}
