# What Windows knows of a program before it runs it: its properties, its icon and its manifest. Elsewhere
# programs have no such thing.
if(WIN32)
    enable_language(RC)
endif()

# add_windows_resources(PROGRAM DESCRIPTION [LONG_PATHS]): DESCRIPTION is plain ASCII, for the resource
# compiler reads its file in the code page of the machine that builds. With LONG_PATHS the program may use
# paths of more than 260 characters, where the system's administrator has allowed them. No manifest names
# a code page: with UTF-8 in the place of the system's the client would send other bytes to the daemon.
function(add_windows_resources program description)
    if(NOT WIN32)
        return()
    endif()
    cmake_parse_arguments(program "LONG_PATHS" "" "" ${ARGN})
    set(sources ${PROJECT_SOURCE_DIR}/packaging/windows)
    set(icon ${sources}/SarvexTool.ico)
    set(manifest ${CMAKE_CURRENT_BINARY_DIR}/${program}.manifest)
    set(resource ${CMAKE_CURRENT_BINARY_DIR}/${program}.rc)
    set(version_fields "${PROJECT_VERSION_MAJOR},${PROJECT_VERSION_MINOR},${PROJECT_VERSION_PATCH},0")
    set(long_paths "")
    if(program_LONG_PATHS)
        file(READ ${sources}/long-paths.manifest long_paths)
    endif()
    configure_file(${sources}/program.manifest.in ${manifest} @ONLY)
    configure_file(${sources}/program.rc.in ${resource} @ONLY)
    set_source_files_properties(${resource} PROPERTIES OBJECT_DEPENDS "${icon};${manifest}")
    # Objects of their own: the project's warnings are no options of the resource compiler.
    add_library(${program}_resources OBJECT ${resource})
    target_sources(${program} PRIVATE $<TARGET_OBJECTS:${program}_resources>)
endfunction()
