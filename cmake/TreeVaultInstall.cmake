# SPDX-License-Identifier: MIT
# Headers, library, import library, CMake package and pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS treevault EXPORT TreeVaultTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
# The texts are looked for beside the library.
if(TREEVAULT_MESSAGE_FILE)
    if(WIN32)
        install(FILES ${TREEVAULT_MESSAGE_FILE} DESTINATION ${CMAKE_INSTALL_BINDIR})
    else()
        install(FILES ${TREEVAULT_MESSAGE_FILE} DESTINATION ${CMAKE_INSTALL_LIBDIR})
    endif()
endif()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/treevault
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/TreeVault)
install(EXPORT TreeVaultTargets NAMESPACE TreeVault:: DESTINATION ${package_folder}
    FILE TreeVaultConfig.cmake)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/TreeVaultConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TreeVaultConfigVersion.cmake DESTINATION ${package_folder})

get_target_property(treevault_link_name treevault OUTPUT_NAME)
if(NOT treevault_link_name)
    set(treevault_link_name treevault)
endif()
configure_file(${CMAKE_CURRENT_LIST_DIR}/treevault.pc.in ${PROJECT_BINARY_DIR}/treevault.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/treevault.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
