# One static library per folder under src/. A folder's library sees the headers of src/ and links only the layers
# below it; tests/lint/include_arrows.py holds the include lines to the same arrows.

# Whether the flags of this build ask for optimisation. TRUE or FALSE in `result`.
function(zuvo_build_optimises result)
    string(TOUPPER "${CMAKE_BUILD_TYPE}" type)
    if("${CMAKE_CXX_FLAGS} ${CMAKE_CXX_FLAGS_${type}}" MATCHES "-O[123s]")
        set(${result} TRUE PARENT_SCOPE)
    else()
        set(${result} FALSE PARENT_SCOPE)
    endif()
endfunction()

# What makes a fault in the program harder to exploit; tests/scripts/hardening_test.py reads it from the programs.
function(zuvo_hardening target)
    target_compile_options(${target} PRIVATE -fstack-protector-strong)
    target_compile_definitions(${target} PRIVATE _GLIBCXX_ASSERTIONS)
    if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
        target_compile_options(${target} PRIVATE -fstack-clash-protection)
        target_link_options(${target} PRIVATE LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack)
    endif()
    # Sanitizers bring checks of their own, and glibc's need optimisation.
    zuvo_build_optimises(optimises)
    if(optimises AND NOT ZUVO_SANITIZE)
        target_compile_options(${target} PRIVATE -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
    endif()
endfunction()

# Compiles several sources at a time: what they include is read once. Of names that two sources define for themselves
# alone, the compiler reports the second.
function(zuvo_unity target sources_at_a_time)
    set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE ${sources_at_a_time})
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # A class of an unnamed namespace looks as if it came from a header, and a local name may be that of another
        # source's function.
        target_compile_options(${target} PRIVATE -Wno-subobject-linkage -Wno-shadow)
    endif()
endfunction()

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
    zuvo_hardening(${target})
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
    if(ZUVO_UNITY_LIBRARIES)
        zuvo_unity(${name} 8)
    endif()
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
