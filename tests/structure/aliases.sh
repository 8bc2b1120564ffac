# SPDX-License-Identifier: MIT
# Sourced by the checks of exported names: names that stand for one function.

# Reads lines of a name and an address; the names of each group must have one address, and no other
# name may have it. Whether a name is there at all is not asked here.
CheckAliases() {
    awk '
    BEGIN {
        group["AcnCloseNodeHandle"] = group["AcnCloseSerializationContext"] = "release"
        group["AcnCloseDeserializationContext"] = group["StgCloseStorageHandle"] = "release"
        group["AcnDuplicateNodeHandle"] = group["StgDuplicateStorageHandle"] = "duplicate"
        group["AcnSerializeNodes"] = group["AcnDeserializeNodes"] = "first operation"
        group["StgCloseOperationsGroup"] = group["StgCloseRetrivalContext"] = "close a group"
    }
    {
        which = $1 in group ? group[$1] : $1
        if (($2 in owner) && owner[$2] != which) {
            print $1 " stands at the address of " owner[$2]
            failures++
        }
        owner[$2] = which
        if ((which in place) && place[which] != $2) {
            print $1 " has another address than its aliases"
            failures++
        }
        place[which] = $2
    }
    END { exit failures > 0 }' "$1"
}
