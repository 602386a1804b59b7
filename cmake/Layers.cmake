# One library a layer. A layer links just the layers that it may use, so that an include from above
# does not even link; scripts/check-layers checks the include lines themselves.

# add_layer(NAME [SOURCES ...] [USES layer ...]): a layer without sources is its headers alone.
function(add_layer name)
    cmake_parse_arguments(layer "" "" "SOURCES;USES" ${ARGN})
    if(NOT layer_SOURCES)
        add_library(${name} INTERFACE)
        target_include_directories(${name} INTERFACE ${PROJECT_SOURCE_DIR}/src)
        target_link_libraries(${name} INTERFACE ${layer_USES})
        return()
    endif()
    add_library(${name} STATIC ${layer_SOURCES})
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${name} PUBLIC ${layer_USES} PRIVATE project_warnings project_hardening)
endfunction()

# add_program(NAME SOURCES ... [USES library ...]): a program on the real operating system.
function(add_program name)
    cmake_parse_arguments(program "" "" "SOURCES;USES" ${ARGN})
    add_executable(${name} ${program_SOURCES})
    target_link_libraries(${name} PRIVATE OSAL ${program_USES} project_warnings project_hardening
        static_program)
endfunction()
