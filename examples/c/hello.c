/* SPDX-License-Identifier: MIT
 *
 * The C sample of README.md. */
#include <treevault/treevault.h>

#include <stdio.h>

static HRESULT TREEVAULT_CALL Print(const char* text, uint64_t size, void* file) {
    return fwrite(text, 1, (size_t)size, file) == size ? S_OK : E_FAIL;
}

int main(void) {
    const int32_t boards = 5;
    IACNode* shelf = NULL;
    INodeSerializer* writer = NULL;
    HRESULT result = AcnCreateNode(TREEVAULT_WIDE("shelf"), NULL, &shelf);
    if (SUCCEEDED(result))
        result = AcnSetAttribute(shelf, TREEVAULT_WIDE("boards"), VtInt32, &boards, sizeof(boards));
    if (SUCCEEDED(result))
        result = AcnStartSerialization(TREEVAULT_FORMAT_XML, 0, Print, stdout, &writer);
    if (SUCCEEDED(result))
        result = AcnSerializeNodes(writer, &shelf, 1, TREEVAULT_ALL_LEVELS);
    if (SUCCEEDED(result))
        result = AcnFinalizeSerialization(writer); /* calls Print with the whole text */
    AcnCloseSerializationContext(writer);
    AcnCloseNodeHandle(shelf);
    return SUCCEEDED(result) ? 0 : 1;
}
