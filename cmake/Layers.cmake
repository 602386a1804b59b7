# The one list of the layers is the add_layer and add_program calls of the folders below src. One
# library a layer: it links just the layers that it may use, so that an include from above does not
# even link; scripts/check-layers reads the same calls and checks the include lines themselves. Two
# layers may share a folder: what no SOURCES name belongs to the first.

# add_layer(NAME [SOURCES ...] [USES layer ...] [LIBRARY_HEADERS folder/ ...]): a layer without sources
# is its headers alone. LIBRARY_HEADERS are those of the header-only libraries that it may include.
function(add_layer name)
    cmake_parse_arguments(layer "" "" "SOURCES;USES;LIBRARY_HEADERS" ${ARGN})
    if(NOT layer_SOURCES)
        add_library(${name} INTERFACE)
        target_include_directories(${name} INTERFACE ${PROJECT_SOURCE_DIR}/src)
        target_link_libraries(${name} INTERFACE ${layer_USES})
        return()
    endif()
    add_library(${name} STATIC ${layer_SOURCES})
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${name} PUBLIC ${layer_USES} PRIVATE project_warnings project_hardening)
    if(layer_LIBRARY_HEADERS)
        target_link_libraries(${name} PRIVATE header_only)
    endif()
endfunction()

# add_program(NAME SOURCES ... [USES library ...]): a program on the real operating system. The linker's map,
# NAME.map beside it, tells what of others is in it (packaging/make-sbom).
function(add_program name)
    cmake_parse_arguments(program "" "" "SOURCES;USES" ${ARGN})
    add_executable(${name} ${program_SOURCES})
    target_link_libraries(${name} PRIVATE OSAL ${program_USES} project_warnings project_hardening
        static_program)
    # A comma in the path would end an option that -Wl gives.
    target_link_options(${name} PRIVATE
        "SHELL:-Xlinker \"-Map=${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${name}.map\"")
    set_property(TARGET ${name} APPEND PROPERTY
        ADDITIONAL_CLEAN_FILES ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${name}.map)
endfunction()
