# SPDX-License-Identifier: MIT
# Message modules: files with nothing but the texts of codes, the same for every platform. They are
# made with the message compiler of MinGW on each, and laid beside the library.
find_program(TREEVAULT_MESSAGE_COMPILER x86_64-w64-mingw32-windmc)
find_program(TREEVAULT_RESOURCE_COMPILER x86_64-w64-mingw32-windres)
find_program(TREEVAULT_RESOURCE_LINKER x86_64-w64-mingw32-ld)
mark_as_advanced(
    TREEVAULT_MESSAGE_COMPILER TREEVAULT_RESOURCE_COMPILER TREEVAULT_RESOURCE_LINKER)

# Makes `name`.dll of a message source, whose one language writes `source name`.bin. The path of the
# file is left in TREEVAULT_MESSAGE_FILE.
function(treevault_add_messages name source)
    if(NOT TREEVAULT_MESSAGE_COMPILER OR NOT TREEVAULT_RESOURCE_COMPILER
            OR NOT TREEVAULT_RESOURCE_LINKER)
        message(WARNING "${name}.dll is not built and the library's own codes have no texts: "
            "x86_64-w64-mingw32-windmc, -windres and -ld are needed (Debian: "
            "binutils-mingw-w64-x86-64).")
        set(TREEVAULT_MESSAGE_FILE "" PARENT_SCOPE)
        return()
    endif()
    get_filename_component(base ${source} NAME_WE)
    set(folder ${CMAKE_CURRENT_BINARY_DIR})
    set(file ${folder}/${name}.dll)
    add_custom_command(
        OUTPUT ${file}
        BYPRODUCTS ${folder}/${base}.rc ${folder}/${base}.h ${folder}/${base}.bin ${folder}/${base}.o
        COMMAND ${TREEVAULT_MESSAGE_COMPILER} -U -h ${folder} -r ${folder} ${source}
        COMMAND ${TREEVAULT_RESOURCE_COMPILER} --preprocessor=${CMAKE_C_COMPILER}
            --preprocessor-arg=-E --preprocessor-arg=-xc --preprocessor-arg=-DRC_INVOKED
            ${base}.rc ${base}.o
        COMMAND ${TREEVAULT_RESOURCE_LINKER} -shared -s --entry=0 --no-insert-timestamp
            -o ${file} ${base}.o
        DEPENDS ${source}
        WORKING_DIRECTORY ${folder}
        COMMENT "Building the message module ${name}.dll"
        VERBATIM)
    add_custom_target(treevault_messages DEPENDS ${file})
    add_dependencies(treevault treevault_messages)
    set_property(TARGET treevault APPEND PROPERTY LINK_DEPENDS ${file})
    add_custom_command(TARGET treevault POST_BUILD
        COMMAND ${CMAKE_COMMAND} -E copy_if_different ${file} $<TARGET_FILE_DIR:treevault>
        VERBATIM)
    set(TREEVAULT_MESSAGE_FILE ${file} PARENT_SCOPE)
endfunction()
