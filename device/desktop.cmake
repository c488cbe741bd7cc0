# The launcher and what it needs, laid out in the build tree as when installed. configure_file also
# brings a changed script up to date with the next build.
configure_file(dubrix ${CMAKE_BINARY_DIR}/bin/dubrix @ONLY)
set(libexec ${CMAKE_BINARY_DIR}/libexec/dubrix)
configure_file(device-paths.bash ${libexec}/device-paths.bash COPYONLY)
configure_file(zip ${libexec}/zip COPYONLY)
configure_file(first-duplicate.drive ${CMAKE_BINARY_DIR}/share/dubrix/first-duplicate.drive COPYONLY)
set(launcher_parts arguments device-folder namespace addresses display archives desk home drive)
foreach(part IN LISTS launcher_parts)
    configure_file(launcher/${part}.bash ${libexec}/launcher/${part}.bash COPYONLY)
endforeach()
configure_file(launcher/xdg-open ${libexec}/launcher/xdg-open COPYONLY)

add_subdirectory(samples)

install(PROGRAMS ${CMAKE_BINARY_DIR}/bin/dubrix DESTINATION bin)
install(PROGRAMS ${libexec}/zip DESTINATION libexec/dubrix)
install(DIRECTORY ${libexec}/launcher DESTINATION libexec/dubrix USE_SOURCE_PERMISSIONS)
install(FILES ${libexec}/device-paths.bash DESTINATION libexec/dubrix)
install(FILES first-duplicate.drive DESTINATION share/dubrix)

# All that ./run needs; the tests are not part of it. The programs for the device may be defined
# after this folder, so they are gathered when all of the project is known.
add_custom_target(dubrix DEPENDS dubrix_samples)
function(dubrix_gather_programs)
    foreach(program dubrix-app dubrix-home dubrix-judge ipainstaller confine dubrix-network)
        if(TARGET ${program})
            add_dependencies(dubrix ${program})
            set_target_properties(${program} PROPERTIES
                RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/libexec/dubrix
                LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/libexec/dubrix)
            install(TARGETS ${program} DESTINATION libexec/dubrix)
        endif()
    endforeach()
endfunction()
cmake_language(DEFER DIRECTORY ${PROJECT_SOURCE_DIR} CALL dubrix_gather_programs)
