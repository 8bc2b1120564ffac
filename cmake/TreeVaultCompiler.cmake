# SPDX-License-Identifier: MIT
# What every target of the project is compiled with, as the interface target treevault_compiler.
add_library(treevault_compiler INTERFACE)
target_compile_features(treevault_compiler INTERFACE cxx_std_20)
target_compile_options(treevault_compiler INTERFACE
    -Wall -Wextra -Wpedantic -Werror -Wshadow -Wconversion
    $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual -Wsuggest-override>
    # Paths in diagnostics and log lines begin at the top of the tree.
    -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=)
if(WIN32)
    target_compile_definitions(treevault_compiler INTERFACE
        UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0602)
    # No program or library of ours needs anything beside it but Windows.
    target_link_options(treevault_compiler INTERFACE -static -static-libgcc -static-libstdc++)
endif()
if(TREEVAULT_SANITIZE)
    target_compile_options(treevault_compiler INTERFACE
        -fsanitize=${TREEVAULT_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
        -fno-sanitize=vptr) # callbacks may come from C, where a table is no C++ object
    target_link_options(treevault_compiler INTERFACE -fsanitize=${TREEVAULT_SANITIZE})
endif()
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_C_EXTENSIONS OFF)
find_package(Threads REQUIRED)
