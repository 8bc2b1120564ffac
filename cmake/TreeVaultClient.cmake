# SPDX-License-Identifier: MIT
# How programs are compiled that stand for those of others: no newer language than C11 and C++17, no
# include path but that of the library, and every warning an error. Target treevault_client.
include_guard(GLOBAL)

add_library(treevault_client INTERFACE)
target_link_libraries(treevault_client INTERFACE treevault)
target_compile_options(treevault_client INTERFACE -Wall -Wextra -pedantic -Werror)
if(WIN32)
    target_link_libraries(treevault_client INTERFACE oleaut32 uuid)
    target_link_options(treevault_client INTERFACE -static -static-libgcc)
endif()
if(TREEVAULT_SANITIZE)
    target_compile_options(treevault_client INTERFACE
        -fsanitize=${TREEVAULT_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(treevault_client INTERFACE -fsanitize=${TREEVAULT_SANITIZE})
endif()

function(treevault_add_client name)
    add_executable(${name} ${ARGN})
    target_link_libraries(${name} PRIVATE treevault_client)
    set_target_properties(${name} PROPERTIES
        C_STANDARD 11 C_STANDARD_REQUIRED ON C_EXTENSIONS OFF
        CXX_STANDARD 17 CXX_STANDARD_REQUIRED ON CXX_EXTENSIONS OFF)
endfunction()
