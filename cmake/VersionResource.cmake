# What the system shows as a Windows program's properties. Elsewhere programs have no such thing.
if(WIN32)
    enable_language(RC)
endif()

# add_version_resource(PROGRAM DESCRIPTION): DESCRIPTION is plain ASCII, for the resource compiler reads
# its file in the code page of the machine that builds.
function(add_version_resource program description)
    if(NOT WIN32)
        return()
    endif()
    set(version_fields "${PROJECT_VERSION_MAJOR},${PROJECT_VERSION_MINOR},${PROJECT_VERSION_PATCH},0")
    set(resource ${CMAKE_CURRENT_BINARY_DIR}/${program}.rc)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/version.rc.in ${resource} @ONLY)
    # Objects of their own: the project's warnings are no options of the resource compiler.
    add_library(${program}_version OBJECT ${resource})
    target_sources(${program} PRIVATE $<TARGET_OBJECTS:${program}_version>)
endfunction()
