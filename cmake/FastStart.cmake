# The client is started anew for each command, so what it costs to load counts. A program with the
# property FAST_START
# - is optimised as a whole when it is linked, which makes it a fifth smaller and frees it of the
#   tables that only the construction of values would need: half of the addresses that have to be
#   corrected at every start. Each function and table gets a section of its own for that, or the linker
#   could not drop it;
# - has its constants in the same segment as its code, which is two mappings less; the price is that
#   the system would let them be executed.
#
# The objects of the layers hold machine code besides, which all other programs link as ever.
add_library(fast_start_objects INTERFACE)
if(CMAKE_BUILD_TYPE STREQUAL "Release" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND NOT WIN32)
    target_compile_options(fast_start_objects INTERFACE -flto=auto -ffat-lto-objects)
    set(fast_start $<BOOL:$<TARGET_PROPERTY:FAST_START>>)
    add_link_options($<IF:${fast_start},-flto=auto,-fno-lto>)
    foreach(option -ffunction-sections -fdata-sections -Wl,-z,noseparate-code)
        add_link_options($<${fast_start}:${option}>)
    endforeach()
endif()
