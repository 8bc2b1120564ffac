# SPDX-License-Identifier: MIT
# error: the forms of a code.
include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

foreach(code 0x80070057 0X80070057 2147942487 -2147024809)
    treevault(error ${code})
    expect_success()
    expect_output_matches("^0x80070057 [^\n]+\n$")
endforeach()
# A code of the library's own is explained by the program.
treevault(error 0x80040208)
expect_success()
expect_output_matches("^0x80040208 [^\n]+\nTreeVault: not well-formed XML\n$")
treevault(error 0)
expect_success()
expect_output_matches("^0x00000000 ")

foreach(code abc 0x 12x 0x1FFFFFFFF -0x5 0x-5 -2147483649 "" "1 " --5)
    treevault(error "${code}")
    expect_failure(2 "treevault: ")
endforeach()
treevault(error)
expect_failure(2 "CODE is required")
