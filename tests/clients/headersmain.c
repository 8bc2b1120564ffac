/* SPDX-License-Identifier: MIT
 *
 * The program that the sources of the single headers are linked into: they must not define
 * anything twice. */
#include <treevault/treevault.h>

int main(void) {
    /* As wide as the interface says, in C as well. */
    return sizeof(ValueType) == 2 && sizeof(WCHAR) == 2 && sizeof(GUID) == 16 ? 0 : 1;
}
