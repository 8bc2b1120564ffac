# SPDX-License-Identifier: MIT
# Prints the CSV of compare.awk as a table, and how many of the limits hold.
BEGIN {
    FS = ","
    format = "%-24s %10s  %-24s %10s %8s %7s  %s\n"
}

function shown(value, unit) {
    return sprintf(value < 10 ? "%.2f %s" : value < 100 ? "%.1f %s" : "%.0f %s", value, unit)
}

NR == 1 {
    printf format, "workload", "TreeVault", "reference", "", "ratio", "limit", ""
    next
}
{
    again = $1 == before
    before = $1
    printf format, again ? "" : $1, again ? "" : shown($3, $2), $4, $4 == "" ? "" : shown($5, $2),
        $6 == "" ? "" : sprintf("%.2f", $6), $7 == "" ? "" : "<= " $7,
        $8 == "yes" ? "holds" : $8 == "no" ? sprintf("OVER by %.0f%%", 100 * ($6 / $7 - 1)) : ""
    limits += $8 != ""
    held += $8 == "yes"
}
END { printf "%d of %d limits hold.\n", held, limits }
