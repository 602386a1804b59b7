# The programs hold all that they need: on Linux the C library too, so that one file runs on every
# x86-64 system, however old or small. It also starts faster than one that has to be put together from
# shared libraries first.
#
# Tests, and builds with sanitizers or coverage counters, are linked to the system's shared libraries.
add_library(static_program INTERFACE)
if(CMAKE_BUILD_TYPE STREQUAL "Release" AND NOT WIN32)
    target_link_options(static_program INTERFACE -static-pie)

    # The linker warns of getaddrinfo in a static program, for by the system's configuration it may load
    # name services, which have to be of the very C library that the program holds. The programs never
    # do: they ask files and DNS only (OSAL/Posix/Socket.cpp), and both are in the library itself. This
    # is the library's function without that one warning; all others are shown.
    execute_process(COMMAND ${CMAKE_C_COMPILER} -print-file-name=libc.a
        OUTPUT_VARIABLE c_library OUTPUT_STRIP_TRAILING_WHITESPACE)
    set(resolver ${CMAKE_BINARY_DIR}/resolver)
    file(MAKE_DIRECTORY ${resolver})
    execute_process(
        COMMAND ${CMAKE_AR} x ${c_library} getaddrinfo.o
        COMMAND_ERROR_IS_FATAL ANY WORKING_DIRECTORY ${resolver})
    execute_process(
        COMMAND ${CMAKE_OBJCOPY} --remove-section=.gnu.warning.getaddrinfo getaddrinfo.o
        COMMAND_ERROR_IS_FATAL ANY WORKING_DIRECTORY ${resolver})
    file(REMOVE ${resolver}/libresolver.a)
    execute_process(
        COMMAND ${CMAKE_AR} qcs libresolver.a getaddrinfo.o
        COMMAND_ERROR_IS_FATAL ANY WORKING_DIRECTORY ${resolver})
    target_link_libraries(static_program INTERFACE ${resolver}/libresolver.a)
endif()
