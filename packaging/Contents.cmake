# What the programs are made of beside this tree's own code: an SPDX list and the notices to hand on, made with the
# programs. It reads ELF files and the package database, so there is none elsewhere.
find_program(DPKG_QUERY_PROGRAM dpkg-query)
if(NOT CMAKE_SYSTEM_NAME STREQUAL "Linux" OR NOT DPKG_QUERY_PROGRAM)
    message(STATUS "No dpkg here: no list of what is linked is made.")
    return()
endif()
find_package(Python3 3.10 REQUIRED COMPONENTS Interpreter)
find_program(READELF_PROGRAM readelf REQUIRED)

# zuvo_list_contents(PACKAGE LICENCE DESTINATION COMPONENT PROGRAM...)
function(zuvo_list_contents package licence destination component)
    set(list ${CMAKE_CURRENT_BINARY_DIR}/${package}.spdx.json)
    set(notices ${CMAKE_CURRENT_BINARY_DIR}/${package}-notices)
    set(files)
    foreach(program ${ARGN})
        list(APPEND files $<TARGET_FILE:${program}>)
    endforeach()
    add_custom_command(
        OUTPUT ${list}
        COMMAND ${Python3_EXECUTABLE} -B ${CMAKE_CURRENT_SOURCE_DIR}/contents.py --name ${package} --version
                ${PROJECT_VERSION} --licence ${licence} --terms ${PROJECT_SOURCE_DIR}/LICENSE --output ${list} --notices
                ${notices} ${files}
        DEPENDS ${ARGN} contents.py licences.txt ${PROJECT_SOURCE_DIR}/LICENSE
        COMMENT "Listing what is linked in ${package}"
        VERBATIM)
    add_custom_target(${package}-contents ALL DEPENDS ${list})
    install(FILES ${list} DESTINATION ${destination} COMPONENT ${component})
    install(DIRECTORY ${notices}/ DESTINATION ${destination}/notices COMPONENT ${component})
endfunction()

set(programs zuvo)
if(ZUVO_BUILD_WINDOW)
    list(APPEND programs ZuvoManager)
endif()
zuvo_list_contents(zuvo-manager LicenseRef-Zuvo ${documents} manager ${programs})
zuvo_list_contents(zuvo-manager-standin GPL-3.0-only ${standin_documents} standin zuvo-standin)
