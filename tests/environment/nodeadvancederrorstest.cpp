// SPDX-License-Identifier: MIT
// Expected misses of nodes where the process asked for records of them. Runs with
// GS_Debug_EnableAdvancedErrorInfo=1.
#include "support/nodes.h"

namespace treevault::tests {
namespace {

class AdvancedErrors : public NodeTest {
protected:
    AdvancedErrors() { EXPECT_EQ(S_OK, SetInt(Subject, W("a"), 1)); }

    // The miss leaves a record that ends with the context.
    template <class... Parameters>
    void ExpectMiss(const WCHAR* context, HRESULT code,
                    HRESULT(TREEVAULT_CALL* function)(Parameters...),
                    std::type_identity_t<Parameters>... arguments) {
        ClearRecord();
        EXPECT_EQ(CodeText(code), CodeText(function(arguments...)));
        Text record;
        ASSERT_TRUE(TakeRecord(record)) << Narrow(context);
        EXPECT_EQ(CodeText(code) + " ", Narrow(record.substr(0, 11)));
        const Text tail = Text(W(" (")) + context + W(")");
        ASSERT_LT(11 + tail.size(), record.size()) << Narrow(record);
        EXPECT_EQ(tail, record.substr(record.size() - tail.size()));
    }

    const Node Root = Create(W("\\a\\r"));
    const Node Subject = AddNew(Root, W("n"));
};

TEST_F(AdvancedErrors, UnknownAttribute) {
    uint32_t state = 77;
    size_t size = 5;
    const WCHAR* const context = W("Attribute='x'; NodePath='\\a\\r\\n'");
    ExpectMiss(context, TREEVAULT_E_NOT_FOUND, AcnGetAttribute, Subject, W("x"), nullptr, nullptr,
               &size, nullptr);
    ExpectMiss(context, TREEVAULT_E_NOT_FOUND, AcnDeleteAttribute, Subject, W("x"));
    ExpectMiss(context, TREEVAULT_E_NOT_FOUND, AcnSetModifiedState, Subject, W("x"), 1);
    ExpectMiss(context, TREEVAULT_E_NOT_FOUND, AcnGetModifiedState, Subject, W("x"), &state);
    EXPECT_EQ(77u, state);
    EXPECT_EQ(5u, size);
}

TEST_F(AdvancedErrors, EmptyNameCountsAsGiven) {
    ExpectMiss(W("Attribute=''; NodePath='\\a\\r\\n'"), TREEVAULT_E_NOT_FOUND, AcnDeleteAttribute,
               Subject, W(""));
    IACNode* child = Untouched();
    ExpectMiss(W("Child=''; NodePath='\\a\\r'"), TREEVAULT_E_NOT_FOUND, AcnGetChildByName, Root,
               W(""), &child);
    EXPECT_EQ(Untouched(), child);
}

TEST_F(AdvancedErrors, EmptyTableWithoutAName) {
    ASSERT_EQ(S_OK, AcnDeleteAttribute(Subject, W("a")));
    uint32_t state = 77;
    ExpectMiss(W("NodePath='\\a\\r\\n'"), TREEVAULT_E_NOT_FOUND, AcnSetModifiedState, Subject,
               nullptr, 0);
    ExpectMiss(W("NodePath='\\a\\r\\n'"), TREEVAULT_E_NOT_FOUND, AcnGetModifiedState, Subject,
               nullptr, &state);
}

TEST_F(AdvancedErrors, Children) {
    const Node stranger = Create(W("\\x\\stranger"));
    IACNode* child = Untouched();
    ExpectMiss(W("Child='x'; NodePath='\\a\\r'"), TREEVAULT_E_NOT_FOUND, AcnGetChildByName, Root,
               W("x"), &child);
    ExpectMiss(W("ChildIndex='1'; NodePath='\\a\\r'"), TREEVAULT_E_NOT_FOUND, AcnGetChildByIndex,
               Root, 1, &child);
    ExpectMiss(W("ChildIndex='18446744073709551615'; NodePath='\\a\\r'"), TREEVAULT_E_NOT_FOUND,
               AcnRemoveChildByIndex, Root, ~uint64_t(0));
    ExpectMiss(W("Child='stranger'; NodePath='\\a\\r'"), TREEVAULT_E_NOT_FOUND, AcnRemoveChild,
               Root, stranger);
    EXPECT_EQ(Untouched(), child);
}

TEST_F(AdvancedErrors, TakenName) {
    EXPECT_TRUE(FailsWithRecordOf(W(" (Child='n'; NodePath='\\a\\r')"), TREEVAULT_E_CHILD_EXISTS,
                                  AcnAddChild, Root, Create(W("\\x\\n"))));
}

TEST_F(AdvancedErrors, ListThatDoesNotFit) {
    WCHAR buffer[1];
    size_t size = 1;
    ExpectMiss(W("NodePath='\\a\\r\\n'"), TREEVAULT_E_INSUFFICIENT_BUFFER, AcnGetAttributeNames,
               Subject, buffer, &size);
    EXPECT_EQ(2u, size);
}

TEST_F(AdvancedErrors, OtherShortBuffersStayPlain) {
    WCHAR buffer[1];
    size_t size = 1;
    EXPECT_TRUE(FailsPlainly(TREEVAULT_E_INSUFFICIENT_BUFFER, AcnGetModifiedAttributeNames, Subject,
                             buffer, &size));
    size = 1;
    EXPECT_TRUE(FailsPlainly(TREEVAULT_E_INSUFFICIENT_BUFFER, AcnGetNodeName, Subject, NameShort,
                             buffer, &size));
    size = 1;
    EXPECT_TRUE(FailsPlainly(TREEVAULT_E_INSUFFICIENT_BUFFER, AcnGetAttribute, Subject, W("a"),
                             nullptr, buffer, &size, nullptr));
    EXPECT_TRUE(FailsPlainly(E_POINTER, AcnGetNodeType, nullptr, buffer, &size));
}

TEST_F(AdvancedErrors, SuccessSetsNone) {
    const Node bare = Create(W("bare"));
    uint32_t state = 77;
    EXPECT_TRUE(Succeeds(AcnSetModifiedState, bare, W("x"), 1));
    EXPECT_TRUE(Succeeds(AcnGetModifiedState, bare, nullptr, &state));
    EXPECT_TRUE(Succeeds(AcnDeleteAttribute, bare, nullptr));
}

} // namespace
} // namespace treevault::tests
