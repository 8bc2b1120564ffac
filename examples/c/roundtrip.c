/* SPDX-License-Identifier: MIT
 *
 * Plain C: builds a tree, writes it to standard output as XML, reads it back, and prints the text
 * of an error. */
#include <treevault/treevault.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* The text that is written, and what is left of it to read. */
struct Text {
    char* Bytes;
    uint64_t Size;
};

static void Check(HRESULT result, const char* what) {
    if (FAILED(result)) {
        fprintf(stderr, "%s failed: 0x%08X\n", what, (unsigned)result);
        exit(1);
    }
}

/* Receives the whole document in one call. */
static HRESULT TREEVAULT_CALL KeepText(const char* text, uint64_t size, void* context) {
    struct Text* kept = context;
    kept->Bytes = malloc((size_t)size);
    if (kept->Bytes == NULL)
        return E_OUTOFMEMORY;
    memcpy(kept->Bytes, text, (size_t)size);
    kept->Size = size;
    fwrite(text, 1, (size_t)size, stdout);
    return S_OK;
}

/* Delivers the whole document as the one and last piece. */
static HRESULT TREEVAULT_CALL GiveText(const char** text, uint64_t* size, uint32_t* end,
                                       void* context) {
    const struct Text* kept = context;
    *text = kept->Bytes;
    *size = kept->Size;
    *end = 1;
    return S_OK;
}

static IACNode* BuildTree(void) {
    const int32_t seats = 4;
    const uint32_t floors[] = {1, 2, 5};
    IACNode* house = NULL;
    IACNode* room = NULL;
    Check(AcnCreateNode(TREEVAULT_WIDE("house"), TREEVAULT_WIDE("building"), &house),
          "AcnCreateNode");
    Check(AcnSetAttribute(house, TREEVAULT_WIDE("floors"), VtUInt32Array, floors, sizeof(floors)),
          "AcnSetAttribute");
    Check(AcnSetAttribute(house, TREEVAULT_WIDE("owner"), VtStringA, "O'Neil", sizeof("O'Neil")),
          "AcnSetAttribute");

    Check(AcnCreateNode(TREEVAULT_WIDE("kitchen"), NULL, &room), "AcnCreateNode");
    Check(AcnSetAttribute(room, TREEVAULT_WIDE("seats"), VtInt32, &seats, sizeof(seats)),
          "AcnSetAttribute");
    Check(AcnAddChild(house, room), "AcnAddChild");
    AcnCloseNodeHandle(room); /* the house holds it now */
    return house;
}

static void WriteTree(IACNode* root, struct Text* text) {
    INodeSerializer* writer = NULL;
    Check(AcnStartSerialization(TREEVAULT_FORMAT_XML, NodeSerializerFlagIndent, KeepText, text,
                                &writer),
          "AcnStartSerialization");
    Check(AcnSerializeNodes(writer, &root, 1, TREEVAULT_ALL_LEVELS), "AcnSerializeNodes");
    Check(AcnFinalizeSerialization(writer), "AcnFinalizeSerialization");
    AcnCloseSerializationContext(writer);
}

static IACNode* ReadTree(struct Text* text) {
    INodeDeserializer* reader = NULL;
    IACNode* root = NULL;
    uint64_t count = 0;
    Check(AcnStartDeserialization(TREEVAULT_FORMAT_XML, NodeDeserializerFlagStrict, GiveText, text,
                                  &reader),
          "AcnStartDeserialization");
    Check(AcnDeserializeNodes(reader, &root, 1, &count), "AcnDeserializeNodes");
    AcnCloseDeserializationContext(reader);
    if (count != 1)
        exit(1);
    return root;
}

/* Reads a number as text: the library converts on the way. */
static void PrintSeats(IACNode* root) {
    IACNode* room = NULL;
    const ValueType wanted = VtStringA;
    char seats[16];
    size_t size = sizeof(seats);
    Check(AcnGetChildByName(root, TREEVAULT_WIDE("kitchen"), &room), "AcnGetChildByName");
    Check(AcnGetAttribute(room, TREEVAULT_WIDE("seats"), &wanted, seats, &size, NULL),
          "AcnGetAttribute");
    AcnCloseNodeHandle(room);
    printf("seats: %s\n", seats);
}

/* A failure leaves a record on the thread; the record and the code together give the text. */
static void PrintError(IACNode* root) {
    WCHAR wide[256];
    char text[512];
    size_t length = sizeof(wide) / sizeof(wide[0]);
    uint64_t size = sizeof(text);
    IErrorInfo* record = NULL;
    const HRESULT result = AcnSetNodeName(root, NameShort, TREEVAULT_WIDE("not\\a name"));
    Check(EhGetErrorContext(NULL, &record), "EhGetErrorContext");
    Check(EhMakeErrorText(result, ErrorTextWithoutDetails, record, NULL, wide, &length),
          "EhMakeErrorText");
    EhReleaseErrorContext(record);
    Check(AcnConvertData(VtStringW, wide, length * sizeof(WCHAR), VtStringA, text, &size),
          "AcnConvertData");
    printf("error: %s\n", text);
}

int main(void) {
    struct Text text = {NULL, 0};
    IACNode* house = BuildTree();
    IACNode* copy;
    WriteTree(house, &text);
    AcnCloseNodeHandle(house);

    copy = ReadTree(&text);
    PrintSeats(copy);
    PrintError(copy);
    AcnCloseNodeHandle(copy);
    free(text.Bytes);
    return 0;
}
