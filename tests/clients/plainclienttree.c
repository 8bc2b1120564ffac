/* SPDX-License-Identifier: MIT
 *
 * The plain C client: nodes, attributes, modification state, trees. */
#include "plainclient.h"

#include <string.h>

static IACNode* Create(const WCHAR* name, const WCHAR* type) {
    IACNode* node = NULL;
    EXPECT(AcnCreateNode(name, type, &node) == S_OK);
    EXPECT(node != NULL);
    return node;
}

static void ExpectName(IACNode* node, NodeNameKind kind, const WCHAR* expected) {
    WCHAR name[64];
    size_t size = 64;
    EXPECT(AcnGetNodeName(node, kind, name, &size) == S_OK);
    EXPECT(IsText(name, expected));
}

static void TestNames(void) {
    IACNode* node = Create(TREEVAULT_WIDE("\\top\\leaf"), TREEVAULT_WIDE("kind"));
    WCHAR type[16];
    size_t size = 0;
    ExpectName(node, NameShort, TREEVAULT_WIDE("leaf"));
    ExpectName(node, NameParentPath, TREEVAULT_WIDE("\\top"));
    EXPECT(AcnSetNodeName(node, NameFullPath, TREEVAULT_WIDE("\\x\\y")) == S_OK);
    ExpectName(node, NameFullPath, TREEVAULT_WIDE("\\x\\y"));
    EXPECT(AcnSetNodeName(node, NameShort, TREEVAULT_WIDE("a\\b")) == TREEVAULT_E_INVALID_NAME);
    EXPECT(AcnGetNodeType(node, NULL, &size) == S_OK);
    EXPECT(size == 5);
    EXPECT(AcnSetNodeType(node, TREEVAULT_WIDE("other")) == S_OK);
    size = 16;
    EXPECT(AcnGetNodeType(node, type, &size) == S_OK);
    EXPECT(IsText(type, TREEVAULT_WIDE("other")));
    AcnCloseNodeHandle(node);
}

static void TestPresentation(void) {
    static const WCHAR none[] = TREEVAULT_WIDE("ACNode[<null>]");
    IACNode* node = Create(TREEVAULT_WIDE("n"), NULL);
    WCHAR text[128];
    size_t size = 128;
    EXPECT(AcnGetStringPresentation(NULL, 0, text, &size) == S_OK);
    EXPECT(size == 15 && IsText(text, none));
    size = 14;
    EXPECT(AcnGetStringPresentation(NULL, 0, text, &size) == TREEVAULT_E_INSUFFICIENT_BUFFER);
    EXPECT(size == 15);
    /* "ACNode[", the address, "]:", CR LF, a tab and <n n="\n"/> */
    size = 128;
    EXPECT(AcnGetStringPresentation(node, 1, text, &size) == S_OK);
    EXPECT(size == 7 + 18 + 4 + 1 + 11 + 1);
    AcnCloseNodeHandle(node);
}

static void TestAttributes(void) {
    IACNode* node = Create(NULL, NULL);
    const int32_t five = 5;
    const ValueType text = VtStringA;
    char value[16];
    WCHAR names[8];
    ValueType stored = VtEmpty;
    size_t size = 0;
    EXPECT(AcnSetAttribute(node, TREEVAULT_WIDE("b"), VtInt32, &five, sizeof(five)) == S_OK);
    EXPECT(AcnSetAttribute(node, TREEVAULT_WIDE("a"), VtStringA, "x", 2) == S_OK);
    EXPECT(AcnSetAttribute(node, TREEVAULT_WIDE("c"), VtInt32, &five, 3) ==
           TREEVAULT_E_INVALID_DATA);
    size = sizeof(value);
    EXPECT(AcnGetAttribute(node, TREEVAULT_WIDE("b"), &text, value, &size, &stored) == S_OK);
    EXPECT(stored == VtInt32 && size == 2 && strcmp(value, "5") == 0);
    EXPECT(AcnGetAttribute(node, TREEVAULT_WIDE("c"), NULL, NULL, NULL, &stored) ==
           TREEVAULT_E_NOT_FOUND);
    size = 8;
    EXPECT(AcnGetAttributeNames(node, names, &size) == S_OK);
    EXPECT(size == 4 && IsText(names, TREEVAULT_WIDE("a")) &&
           IsText(names + 2, TREEVAULT_WIDE("b")));
    EXPECT(AcnDeleteAttribute(node, TREEVAULT_WIDE("a")) == S_OK);
    EXPECT(AcnDeleteAttribute(node, TREEVAULT_WIDE("a")) == TREEVAULT_E_NOT_FOUND);
    AcnCloseNodeHandle(node);
}

static void TestModification(void) {
    IACNode* node = Create(TREEVAULT_WIDE("n"), NULL);
    WCHAR names[8];
    size_t size = 8;
    uint32_t state = 7;
    EXPECT(AcnSetAttribute(node, TREEVAULT_WIDE("a"), VtEmpty, NULL, 0) == S_OK);
    EXPECT(AcnGetModifiedState(node, TREEVAULT_WIDE("a"), &state) == S_OK);
    EXPECT(state == 1);
    EXPECT(AcnGetModifiedAttributeNames(node, names, &size) == S_OK);
    EXPECT(size == 2 && IsText(names, TREEVAULT_WIDE("a")));
    EXPECT(AcnSetModifiedState(node, NULL, 0) == S_OK);
    EXPECT(AcnGetModifiedState(node, NULL, &state) == S_OK);
    EXPECT(state == 0);
    AcnCloseNodeHandle(node);
}

static void ExpectParent(IACNode* node, IACNode* expected) {
    IACNode* parent = node;
    EXPECT(AcnGetParent(node, &parent) == S_OK);
    EXPECT(parent == expected);
    AcnCloseNodeHandle(parent);
}

static void TestChildren(void) {
    IACNode* parent = Create(TREEVAULT_WIDE("p"), NULL);
    IACNode* child = Create(TREEVAULT_WIDE("c"), NULL);
    IACNode* found = NULL;
    size_t count = 7;
    EXPECT(AcnAddChild(parent, child) == S_OK);
    EXPECT(AcnAddChild(parent, child) == TREEVAULT_E_HAS_PARENT);
    EXPECT(AcnGetChildCount(parent, &count) == S_OK);
    EXPECT(count == 1);
    EXPECT(AcnGetChildByIndex(parent, 0, &found) == S_OK);
    EXPECT(found == child);
    AcnCloseNodeHandle(found);
    EXPECT(AcnGetChildByName(parent, TREEVAULT_WIDE("c"), &found) == S_OK);
    EXPECT(found == child);
    AcnCloseNodeHandle(found);
    ExpectName(child, NameFullPath, TREEVAULT_WIDE("\\p\\c"));
    ExpectParent(child, parent);
    EXPECT(AcnRemoveChild(parent, child) == S_OK);
    ExpectParent(child, NULL);
    EXPECT(AcnAddChild(parent, child) == S_OK);
    EXPECT(AcnRemoveChildByIndex(parent, 0) == S_OK);
    EXPECT(AcnRemoveChildByIndex(parent, 0) == TREEVAULT_E_NOT_FOUND);
    AcnCloseNodeHandle(child);
    AcnCloseNodeHandle(parent);
}

static void TestHandles(void) {
    IACNode* node = Create(TREEVAULT_WIDE("n"), NULL);
    IACNode* copy = NULL;
    IACNode* clone = NULL;
    EXPECT(AcnDuplicateNodeHandle(node, &copy) == S_OK);
    EXPECT(copy == node);
    AcnCloseNodeHandle(node);
    EXPECT(AcnCloneNode(copy, TREEVAULT_ALL_LEVELS, CloneOwnAttributes, &clone) == S_OK);
    EXPECT(clone != copy);
    ExpectName(clone, NameShort, TREEVAULT_WIDE("n"));
    AcnCloseNodeHandle(clone);
    AcnCloseNodeHandle(copy);
    AcnCloseNodeHandle(NULL);
    EXPECT(AcnDuplicateNodeHandle(NULL, &copy) == E_POINTER);
}

void TestTree(void) {
    TestNames();
    TestPresentation();
    TestAttributes();
    TestModification();
    TestChildren();
    TestHandles();
}
