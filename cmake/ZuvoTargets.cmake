# One static library per folder under src/. A folder's library sees the headers of src/ and links only the layers
# below it; tests/lint/include_arrows.py holds the include lines to the same arrows.

function(zuvo_compile_settings target)
    target_compile_features(${target} PUBLIC cxx_std_20)
    target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast
                                             -Wcast-qual -Woverloaded-virtual -Wconversion -Wsign-conversion
                                             -Wdouble-promotion -Wimplicit-fallthrough -Werror)
    # GCC 12 sees an overlap in std::string's own operator+ once it optimises; later versions no longer do.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
        target_compile_options(${target} PRIVATE -Wno-restrict)
    endif()
    if(ZUVO_SANITIZE)
        target_compile_options(${target} PRIVATE -fsanitize=${ZUVO_SANITIZE} -fno-sanitize-recover=all
                                                 -fno-omit-frame-pointer)
        target_link_options(${target} PUBLIC -fsanitize=${ZUVO_SANITIZE})
    endif()
endfunction()

function(zuvo_qt_settings target)
    target_compile_definitions(${target} PRIVATE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS
                                                 QT_NO_NARROWING_CONVERSIONS_IN_CONNECT QT_NO_FOREACH)
    set_target_properties(${target} PROPERTIES AUTOMOC ON)
endfunction()

# zuvo_library(NAME SOURCES ... LINK ... [QT])
function(zuvo_library name)
    cmake_parse_arguments(arg "QT" "" "SOURCES;LINK" ${ARGN})
    add_library(${name} STATIC ${arg_SOURCES})
    target_link_libraries(${name} PUBLIC ${arg_LINK})
    zuvo_compile_settings(${name})
    if(arg_QT)
        zuvo_qt_settings(${name})
    endif()
endfunction()

# zuvo_program(NAME SOURCES ... LINK ... [QT])
function(zuvo_program name)
    cmake_parse_arguments(arg "QT" "" "SOURCES;LINK" ${ARGN})
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE ${arg_LINK})
    zuvo_compile_settings(${name})
    if(arg_QT)
        zuvo_qt_settings(${name})
    endif()
endfunction()
