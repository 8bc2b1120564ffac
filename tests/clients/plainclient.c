/* SPDX-License-Identifier: MIT
 *
 * A client in plain C that calls every exported function: values, errors, components, records. */
#include "plainclient.h"

#include <stdio.h>
#include <string.h>

static int failures = 0;

void Expect(int holds, const char* condition, const char* file, int line) {
    if (holds)
        return;
    printf("%s:%d: does not hold: %s\n", file, line, condition);
    ++failures;
}

int IsText(const WCHAR* text, const WCHAR* expected) {
    while (*text != 0 && *text == *expected) {
        ++text;
        ++expected;
    }
    return *text == *expected;
}

static void TestConversion(void) {
    const int32_t number = -5;
    char text[8];
    uint64_t size = 0;
    EXPECT(AcnConvertData(VtInt32, &number, sizeof(number), VtStringA, NULL, &size) ==
           TREEVAULT_E_INSUFFICIENT_BUFFER);
    EXPECT(size == 3);
    size = sizeof(text);
    EXPECT(AcnConvertData(VtInt32, &number, sizeof(number), VtStringA, text, &size) == S_OK);
    EXPECT(size == 3 && strcmp(text, "-5") == 0);
    EXPECT(AcnConvertData(8, &number, sizeof(number), VtStringA, text, &size) ==
           TREEVAULT_E_UNSUPPORTED_TYPE);
}

static void TestVariantNames(void) {
    int untouched = 7;
    EXPECT(VariantData_ConvertType(&untouched, VtInt32) == E_NOTIMPL);
    EXPECT(VariantData_Init(&untouched) == E_NOTIMPL);
    EXPECT(VariantData_GetBuffer(&untouched) == S_OK);
    EXPECT(VariantData_GetData(&untouched) == S_OK);
    EXPECT(VariantData_GetType(&untouched) == S_OK);
    VariantData_Cleanup(&untouched);
    EXPECT(untouched == 7);
}

/* A failure leaves a record, which is taken once. */
static void TestErrors(void) {
    IErrorInfo* record = NULL;
    WCHAR text[128];
    size_t length = 0;
    EXPECT(AcnCreateNode(TREEVAULT_WIDE("a"), NULL, NULL) == E_POINTER);
    EXPECT(EhGetErrorContext(NULL, &record) == S_OK);
    EXPECT(record != NULL);
    EXPECT(EhMakeErrorText(E_POINTER, ErrorTextWithoutText | ErrorTextWithoutDetails, record, NULL,
                           NULL, &length) == S_OK);
    EXPECT(length == 11);
    length = 10;
    EXPECT(EhMakeErrorText(E_POINTER, ErrorTextWithoutText | ErrorTextWithoutDetails, record, NULL,
                           text, &length) == TREEVAULT_E_INSUFFICIENT_BUFFER);
    length = 11;
    EXPECT(EhMakeErrorText(E_POINTER, ErrorTextWithoutText | ErrorTextWithoutDetails, record, NULL,
                           text, &length) == S_OK);
    EXPECT(IsText(text, TREEVAULT_WIDE("0x80004003")));
    EhReleaseErrorContext(record);
    EhReleaseErrorContext(NULL);
    EXPECT(EhGetErrorContext(NULL, &record) == S_FALSE);
    EXPECT(record == NULL);
}

/* The slot of the thread, as the platform offers it. */
static void TestRecords(void) {
    IErrorInfo* record = NULL;
    IErrorInfo* same = NULL;
    EXPECT(AcnCreateNode(TREEVAULT_WIDE("\\"), NULL, NULL) == E_POINTER);
    EXPECT(GetErrorInfo(0, &record) == S_OK);
    EXPECT(GetErrorInfo(0, &same) == S_FALSE);
    EXPECT(SetErrorInfo(0, record) == S_OK);
    EXPECT(EhGetErrorContext(NULL, &same) == S_OK);
    EXPECT(same == record);
    EhReleaseErrorContext(record);
    EhReleaseErrorContext(same);
    EXPECT(CreateErrorInfo(NULL) == E_INVALIDARG);
}

static void TestTexts(void) {
    BSTR whole = SysAllocString(TREEVAULT_WIDE("abc"));
    BSTR part = SysAllocStringLen(TREEVAULT_WIDE("abcdef"), 2);
    EXPECT(SysStringLen(whole) == 3 && IsText(whole, TREEVAULT_WIDE("abc")));
    EXPECT(SysStringLen(part) == 2 && IsText(part, TREEVAULT_WIDE("ab")));
    EXPECT(SysStringLen(NULL) == 0);
    SysFreeString(whole);
    SysFreeString(part);
    SysFreeString(NULL);
}

static void TestModule(void) {
    IComponentsModule* module = NULL;
    IComponentsModule* again = NULL;
    EXPECT(GetComponentsModuleObject(NULL) == E_INVALIDARG);
    EXPECT(GetComponentsModuleObject(&module) == S_OK);
    EXPECT(GetComponentsModuleObject(&again) == S_OK);
    EXPECT(module != NULL && module == again);
}

int main(void) {
    TestConversion();
    TestVariantNames();
    TestErrors();
    TestRecords();
    TestTexts();
    TestModule();
    TestStorage();
    TestTree();
    TestXml();
    if (failures == 0)
        printf("all is as expected\n");
    return failures == 0 ? 0 : 1;
}
