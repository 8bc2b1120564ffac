# SPDX-License-Identifier: MIT
# Reads targets.txt, then medians. Prints CSV: one line for each workload and reference, with the
# ratio of TreeVault's figure to the reference's and, where there is one, the limit and whether it
# holds. Names are BM_<workload>/<who>, with arguments and marks of the measurement behind.
function note(workload, who, value) {
    if (!(workload in references)) { order[++count] = workload; references[workload] = "" }
    if (who != "treevault")
        references[workload] = references[workload] " " who
    values[workload, who] = value
}

function line(workload, who, value, ratio,    key, holds) {
    key = workload SUBSEP who
    holds = ""
    if (key in limits)
        holds = ratio <= limits[key] ? "yes" : "no"
    printf "%s,%s,%.4g,%s,%.4g,%.3f,%s,%s\n", workload, workload ~ /\/memory$/ ? "B" : "ns",
        values[workload, "treevault"], who, value, ratio, limits[key], holds
}

FNR == NR {
    if ($0 !~ /^#/ && NF == 3) {
        limits[$1, $2] = $3
        if ($2 == "bytes") {
            references[$1] = " bytes"
            values[$1, "bytes"] = $3
            limits[$1, $2] = 1
        }
    }
    next
}

{
    parts = split($1, part, "/")
    workload = substr(part[1], 4)
    for (i = 3; i <= parts; ++i)
        if (part[i] ~ /^(threads:)?[0-9]+$/) workload = workload "/" part[i]
    note(workload, part[2], 1e9 / $2)
    if ($3 > 0) {
        if (!((workload "/memory") in listed)) {
            listed[workload "/memory"] = 1
            order[++count] = workload "/memory"
            references[workload "/memory"] = references[workload "/memory"] ""
        }
        note(workload "/memory", part[2], $3)
    }
    # The same at one thread, and at the first and smallest size.
    if (part[2] == "treevault" && workload ~ /\/threads:/) {
        base = workload
        sub(/\/threads:.*/, "/threads:1", base)
        if (base != workload) note(workload, "one_thread", values[base, "treevault"])
    }
    if (part[2] == "treevault" && workload ~ /^Growth/) {
        base = workload
        sub(/\/.*/, "", base)
        if (!(base in first)) first[base] = 1e9 / $2
        else note(workload, "smallest", first[base])
    }
}

END {
    print "workload,unit,treevault,reference,value,ratio,limit,holds"
    for (w = 1; w <= count; ++w) {
        workload = order[w]
        own = values[workload, "treevault"]
        total = split(references[workload], who, " ")
        if (own == "") continue
        for (r = 1; r <= total; ++r)
            line(workload, who[r], values[workload, who[r]], own / values[workload, who[r]])
        if (total == 0)
            printf "%s,%s,%.4g,,,,,\n", workload, workload ~ /\/memory$/ ? "B" : "ns", own
    }
}
