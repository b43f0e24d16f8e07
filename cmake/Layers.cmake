# One library a folder of src/, so that the build file itself shows the layers.

add_library(ostmake_options INTERFACE)
target_include_directories(ostmake_options INTERFACE ${PROJECT_SOURCE_DIR}/src)
target_compile_options(ostmake_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # gcc 12 takes concatenated strings for copies that overlap, or that run past the end.
    target_compile_options(ostmake_options INTERFACE -Wno-restrict -Wno-stringop-overflow -Wno-array-bounds)
endif()
# Text and bytes convert where the code says so, one byte a character, and nowhere by accident.
target_compile_definitions(
    ostmake_options INTERFACE QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY QT_NO_KEYWORDS
                              QT_USE_QSTRINGBUILDER)
if(OSTMAKE_SANITIZE)
    target_compile_options(
        ostmake_options INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer
                                  -O1 -g1)
    target_link_options(ostmake_options INTERFACE -fsanitize=address,undefined)
endif()
if(OSTMAKE_COVERAGE)
    target_compile_options(ostmake_options INTERFACE --coverage -O1 -g1 -fprofile-update=atomic)
    target_link_options(ostmake_options INTERFACE --coverage)
    add_library(ostmake_counts OBJECT ${PROJECT_SOURCE_DIR}/tests/support/counts/AtSignal.cpp)
endif()
if(OSTMAKE_FUZZ)
    target_compile_options(ostmake_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# Headers of others that most files include, compiled once for all: half of the time of a build went into them.
set(ostmake_common_headers
    <QByteArray> <QDateTime> <QHash> <QList> <QMap> <QSet> <QString> <QStringList>
    <algorithm> <array> <functional> <map> <memory> <optional> <span> <string> <string_view> <unordered_map> <vector>)

function(ostmake_precompile target)
    if(target STREQUAL ostmake_foundation)
        target_precompile_headers(${target} PRIVATE ${ostmake_common_headers})
    else()
        target_precompile_headers(${target} REUSE_FROM ostmake_foundation)
    endif()
endfunction()

# ostmake_layer(name below...): the library of src/<name>. What stands in `below` is a layer's name or a target.
function(ostmake_layer name)
    file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/${name}/*.cpp)
    add_library(ostmake_${name} STATIC ${sources})
    ostmake_link(ostmake_${name} PUBLIC ${ARGN})
    ostmake_precompile(ostmake_${name})
endfunction()

# ostmake_program(name folder below...): a program out of one folder; main.cpp is kept apart, so that tests can
# link the rest of the folder as a library.
function(ostmake_program name folder)
    file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${folder}/*.cpp)
    list(REMOVE_ITEM sources ${PROJECT_SOURCE_DIR}/${folder}/main.cpp)
    get_filename_component(layer ${folder} NAME)
    add_library(ostmake_${layer} STATIC ${sources})
    ostmake_link(ostmake_${layer} PUBLIC ${ARGN})
    ostmake_precompile(ostmake_${layer})
    add_executable(${name} ${PROJECT_SOURCE_DIR}/${folder}/main.cpp)
    target_link_libraries(${name} PRIVATE ostmake_${layer} $<TARGET_NAME_IF_EXISTS:ostmake_counts>)
    install(TARGETS ${name} RUNTIME DESTINATION bin)
endfunction()

function(ostmake_link target scope)
    target_link_libraries(${target} ${scope} ostmake_options)
    foreach(below IN LISTS ARGN)
        if(TARGET ostmake_${below})
            target_link_libraries(${target} ${scope} ostmake_${below})
        else()
            target_link_libraries(${target} ${scope} ${below})
        endif()
    endforeach()
endfunction()
