# What nearly every file reads is parsed once for all: most of a first build is the parsing of the
# standard library's and Qt's headers. Files still include what they use, and a build without
# precompiled headers (CMAKE_DISABLE_PRECOMPILE_HEADERS) must work.

set(by_default OFF)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    set(by_default ON)
endif()
option(DUBRIX_PRECOMPILE "Parse common headers once" ${by_default})
if(DUBRIX_PRECOMPILE AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # GCC 12 sees overruns in the standard library's own string concatenation, and forgets that the
    # headers are the system's.
    target_compile_options(dubrix_options INTERFACE
        -Wno-array-bounds -Wno-stringop-overflow -Wno-stringop-overread)
endif()

# dubrix_precompiled(NAME LIBRARIES target… HEADERS header…): a target that holds them.
function(dubrix_precompiled name)
    if(NOT DUBRIX_PRECOMPILE)
        return()
    endif()
    cmake_parse_arguments(PARSE_ARGV 1 THEIR "" "" "LIBRARIES;HEADERS")
    set(source ${CMAKE_BINARY_DIR}/${name}.cpp)
    if(NOT EXISTS ${source})
        file(WRITE ${source} "")
    endif()
    add_library(${name} STATIC ${source})
    target_link_libraries(${name} PRIVATE ${THEIR_LIBRARIES})
    target_precompile_headers(${name} PRIVATE ${THEIR_HEADERS})
    # Only for the compiler: nothing is linked with it.
    set_target_properties(${name} PROPERTIES EXCLUDE_FROM_ALL ON)
endfunction()

# dubrix_precompile(FROM target…): has the targets, as far as they are built here, read them.
function(dubrix_precompile from)
    foreach(target IN LISTS ARGN)
        if(TARGET ${from} AND TARGET ${target})
            target_precompile_headers(${target} REUSE_FROM ${from})
        endif()
    endforeach()
endfunction()

dubrix_precompiled(dubrix_standard_headers
    LIBRARIES dubrix_options
    HEADERS <algorithm> <array> <charconv> <cstdint> <filesystem> <functional> <memory> <mutex>
            <optional> <span> <string> <string_view> <system_error> <unordered_map> <utility>
            <vector>)
# Not dubrix_text, which modules load: code of another position reads no such header.
dubrix_precompile(dubrix_standard_headers
    dubrix_files dubrix_lists dubrix_images dubrix_archive dubrix_registry
    dubrix_installer dubrix_confine dubrix_judge dubrix-judge dubrix_platform_posix
    dubrix_overlays dubrix_engine dubrix_terminal)

if(BUILD_TESTING)
    dubrix_precompiled(dubrix_test_headers
        LIBRARIES dubrix_options GTest::gtest
        HEADERS <algorithm> <array> <cstdint> <filesystem> <fstream> <functional> <memory>
                <optional> <string> <string_view> <utility> <vector> <gtest/gtest.h>)
endif()

if(DUBRIX_DESKTOP)
    dubrix_precompiled(dubrix_window_headers
        LIBRARIES dubrix_options Qt6::Quick
        HEADERS <QAbstractListModel> <QColor> <QDateTime> <QGuiApplication> <QImage> <QJSEngine>
                <QJSPrimitiveValue> <QJSValue> <QObject> <QPointer> <QQmlComponent> <QQmlContext>
                <QQmlEngine> <QQmlListProperty> <QQuickItem> <QQuickWindow> <QRandomGenerator>
                <QString> <QStringList> <QTimer> <QUrl> <QVariant> <QtQml/qqmlprivate.h>
                <algorithm> <cmath> <functional> <memory> <optional> <string> <utility> <vector>)
    if(TARGET dubrix_window_headers)
        target_compile_definitions(dubrix_window_headers PRIVATE QT_NO_KEYWORDS)
    endif()
    dubrix_precompile(dubrix_window_headers
        dubrix_controls dubrix_windows dubrix_screens dubrix_home dubrix-app dubrix-home)
endif()
