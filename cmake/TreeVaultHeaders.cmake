# SPDX-License-Identifier: MIT
# Header-only libraries. A cross compiler must not see the host's include folder as a whole, so the
# few that both platforms share are linked into a folder of their own: target treevault_headers.
find_path(TREEVAULT_RAPIDXML_DIR rapidxml/rapidxml.hpp
    PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH REQUIRED)
find_path(TREEVAULT_CLI11_DIR CLI/CLI.hpp PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH)

set(treevault_headers_dir ${CMAKE_CURRENT_BINARY_DIR}/headers)
file(MAKE_DIRECTORY ${treevault_headers_dir})
file(CREATE_LINK ${TREEVAULT_RAPIDXML_DIR}/rapidxml ${treevault_headers_dir}/rapidxml SYMBOLIC)
if(TREEVAULT_CLI11_DIR)
    file(CREATE_LINK ${TREEVAULT_CLI11_DIR}/CLI ${treevault_headers_dir}/CLI SYMBOLIC)
endif()

add_library(treevault_headers INTERFACE)
target_include_directories(treevault_headers SYSTEM INTERFACE ${treevault_headers_dir})
