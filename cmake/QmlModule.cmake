# dubrix_qml_module(TARGET URI... SOURCES... QML_FILES... [SINGLETONS...] [IMPORTS...])
#
# A static library that is a QML module, below qrc:/qt/qml. Its QML files may lie in any folder of the
# room; to each other they lie in one. SINGLETONS are QML files of which there is one object each.

function(dubrix_qml_module target)
    cmake_parse_arguments(PARSE_ARGV 1 module "" URI "SOURCES;QML_FILES;SINGLETONS;IMPORTS")
    foreach(file IN LISTS module_QML_FILES module_SINGLETONS)
        get_filename_component(name ${file} NAME)
        set_source_files_properties(${file} PROPERTIES QT_RESOURCE_ALIAS ${name})
    endforeach()
    set_source_files_properties(${module_SINGLETONS} PROPERTIES QT_QML_SINGLETON_TYPE TRUE)

    qt_add_library(${target} STATIC)
    set_target_properties(${target} PROPERTIES AUTOMOC ON)
    qt_add_qml_module(${target}
        URI ${module_URI}
        VERSION 1.0
        DEPENDENCIES QtQuick ${module_IMPORTS}
        RESOURCE_PREFIX /qt/qml
        OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/qml/${module_URI}
        IMPORT_PATH ${PROJECT_BINARY_DIR}/qml
        SOURCES ${module_SOURCES}
        QML_FILES ${module_QML_FILES} ${module_SINGLETONS})

    # What is generated from the layout is compiled in few pieces, and is not ours to warn about.
    set_source_files_properties(${module_SOURCES} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
    set_target_properties(${target} PROPERTIES
        UNITY_BUILD ON
        UNITY_BUILD_CODE_BEFORE_INCLUDE "#pragma GCC diagnostic ignored \"-Wshadow\"")

    # The generated registration includes headers by their bare names.
    foreach(file IN LISTS module_SOURCES)
        get_filename_component(folder ${file} DIRECTORY)
        target_include_directories(${target} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/${folder})
    endforeach()
    target_compile_definitions(${target} PUBLIC QT_NO_KEYWORDS)
    target_link_libraries(${target} PUBLIC dubrix_options Qt6::Quick)
endfunction()
