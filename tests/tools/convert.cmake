# SPDX-License-Identifier: MIT
# convert: names of types, arrays, odd values, and what cannot be converted.
include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

# expect_converted(OUTPUT ARGUMENT...)
function(expect_converted expected)
    treevault(convert ${ARGN})
    expect_success()
    expect_output("${expected}")
endfunction()

expect_converted("5\n" StringA 5 Int32)
expect_converted("-1\n" UInt32 4294967295 Int32)
expect_converted("18446744073709551615\n" Int32 -1 UInt64)
expect_converted("4294967295\n" vtuint32 0xFFFFFFFF VtInt64)
expect_converted("True\n" Int32 2 Bool)
expect_converted("0\n" Bool true UInt32)
expect_converted("HEX:0aff\n" StringW B64:Cv8= Binary)
expect_converted("{00112233-4455-6677-8899-AABBCCDDEEFF}\n"
    Guid 00112233445566778899aabbccddeeff StringW)
expect_converted("ü🌳\n" StringA "ü🌳" StringW)
expect_converted("0\n" Empty Int32)

# Each value is an element, and each element of the result a line; no value is an empty array.
expect_converted("1\n2\n-3\n" StringA[] 1 2 -3 Int32[])
expect_converted("True\nFalse\n" VtInt32Array 7 0 VtBoolArray)
expect_converted("" Int32[] StringA[])
expect_converted("[a,b]\n" StringA "[a,b]" StringW)

# What looks like an option, a command or nothing is a value all the same.
expect_converted("--help\n" StringA --help StringW)
expect_converted("--\n" StringA -- StringW)
expect_converted("show\n" StringA show StringW)
treevault(convert StringA "" Int32)
expect_success()
expect_output("0\n")
treevault(convert StringA[] "a;b" "" StringW[])
expect_success()
expect_output("a;b\n\n")

# The message tells which conversion failed, and how.
treevault(convert StringA abc Int32)
expect_failure(1 "^treevault: cannot convert StringA to Int32: .*0x80040204")
treevault(convert Int32 abc StringA)
expect_failure(1 "cannot convert StringA to Int32: .*0x80040204")
treevault(convert Int32 7 Int32[])
expect_failure(1 "cannot convert Int32 to Int32\\[\\]: .*0x80040204")
treevault(convert Int32 7 Empty)
expect_failure(1 "cannot convert Int32 to Empty: .*0x80040204")

treevault(convert Int33 7 Int32)
expect_failure(2 "unknown type 'Int33'.*Int32.*Guid")
treevault(convert Binary[] 7 Int32)
expect_failure(2 "unknown type")
treevault(convert Int32 7 8 StringA)
expect_failure(2 "one value of type Int32 is needed, not 2")
treevault(convert Int32 StringA)
expect_failure(2 "one value of type Int32 is needed, not 0")
treevault(convert Int32)
expect_failure(2 "convert needs TYPE, VALUE and TO-TYPE")
treevault(convert)
expect_failure(2 "convert needs TYPE, VALUE and TO-TYPE")
