/* SPDX-License-Identifier: MIT
 *
 * The plain C client: writing and reading of documents. */
#include "plainclient.h"

#include <string.h>

struct Text {
    char Bytes[256];
    uint64_t Size;
};

static HRESULT TREEVAULT_CALL Keep(const char* text, uint64_t size, void* context) {
    struct Text* kept = context;
    if (size > sizeof(kept->Bytes))
        return E_FAIL;
    memcpy(kept->Bytes, text, (size_t)size);
    kept->Size = size;
    return S_OK;
}

static HRESULT TREEVAULT_CALL Give(const char** text, uint64_t* size, uint32_t* end,
                                   void* context) {
    const struct Text* kept = context;
    *text = kept->Bytes;
    *size = kept->Size;
    *end = 1;
    return S_OK;
}

static void TestWriting(struct Text* text) {
    static const char expected[] =
        "<nr><n n=\"a\" t=\"b\"><a n=\"c\" t=\"7\" v=\"True\"/></n></nr>";
    IACNode* node = NULL;
    INodeSerializer* writer = NULL;
    const uint8_t yes = 1;
    EXPECT(AcnCreateNode(TREEVAULT_WIDE("a"), TREEVAULT_WIDE("b"), &node) == S_OK);
    EXPECT(AcnSetAttribute(node, TREEVAULT_WIDE("c"), VtBool, &yes, sizeof(yes)) == S_OK);
    EXPECT(AcnStartSerialization(TREEVAULT_FORMAT_XML, 0, Keep, text, &writer) == S_OK);
    EXPECT(AcnSerializeNodes(writer, &node, 1, 0) == S_OK);
    EXPECT(AcnFinalizeSerialization(writer) == S_OK);
    EXPECT(AcnFinalizeSerialization(writer) == TREEVAULT_E_CONTEXT_FINISHED);
    AcnCloseSerializationContext(writer);
    AcnCloseSerializationContext(NULL);
    AcnCloseNodeHandle(node);
    EXPECT(text->Size == sizeof(expected) - 1);
    EXPECT(memcmp(text->Bytes, expected, sizeof(expected) - 1) == 0);
}

static void TestReading(struct Text* text) {
    IACNode* nodes[2] = {NULL, NULL};
    INodeDeserializer* reader = NULL;
    uint64_t count = 7;
    uint8_t value = 0;
    size_t size = sizeof(value);
    EXPECT(AcnStartDeserialization(TREEVAULT_FORMAT_XML, NodeDeserializerFlagStrict, Give, text,
                                   &reader) == S_OK);
    EXPECT(AcnDeserializeNodes(reader, nodes, 2, &count) == S_OK);
    EXPECT(count == 1);
    EXPECT(AcnGetAttribute(nodes[0], TREEVAULT_WIDE("c"), NULL, &value, &size, NULL) == S_OK);
    EXPECT(value == 1 && size == 1);
    AcnCloseNodeHandle(nodes[0]);
    AcnCloseDeserializationContext(reader);
    AcnCloseDeserializationContext(NULL);
}

void TestXml(void) {
    struct Text text = {{0}, 0};
    TestWriting(&text);
    TestReading(&text);
    text.Size = 3; /* "<nr" */
    {
        INodeDeserializer* reader = NULL;
        EXPECT(AcnStartDeserialization(TREEVAULT_FORMAT_XML, 0, Give, &text, &reader) ==
               TREEVAULT_E_NOT_WELL_FORMED);
        EXPECT(reader == NULL);
    }
}
