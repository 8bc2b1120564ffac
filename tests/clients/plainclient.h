/* SPDX-License-Identifier: MIT
 *
 * How the plain C client checks what it sees. */
#ifndef TREEVAULT_TESTS_CLIENTS_PLAINCLIENT_H
#define TREEVAULT_TESTS_CLIENTS_PLAINCLIENT_H

#include <treevault/treevault.h>

/* Counts and prints a condition that does not hold. */
#define EXPECT(condition) Expect(!!(condition), #condition, __FILE__, __LINE__)

void Expect(int holds, const char* condition, const char* file, int line);

/* Whether two texts are equal. */
int IsText(const WCHAR* text, const WCHAR* expected);

void TestStorage(void);
void TestTree(void);
void TestXml(void);

#endif
