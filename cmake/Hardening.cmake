# What protects the programs at run time. On Windows also what makes them self-contained.
add_library(project_hardening INTERFACE)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
if(CMAKE_BUILD_TYPE STREQUAL "Release")
    target_compile_options(project_hardening INTERFACE -fstack-protector-strong -D_FORTIFY_SOURCE=2)
    # Errors tell in which source they were raised: a program names it from src on, wherever it was built. A
    # compiler cache may hand on the sources with paths from the build folder on.
    file(RELATIVE_PATH sources_from_build ${PROJECT_BINARY_DIR} ${PROJECT_SOURCE_DIR}/src)
    target_compile_options(project_hardening INTERFACE
        -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/src=src -fmacro-prefix-map=${sources_from_build}=src)
    if(WIN32)
        # No DLL that a fresh Windows lacks: the C++ and thread runtimes are linked in. So is the
        # library of the stack protection; it takes its random guard from ADVAPI32, which is a part of
        # every Windows.
        # No time of the build is left in a program: the same sources give the same bytes.
        target_link_options(project_hardening INTERFACE
            -static -s -fstack-protector-strong -Wl,--no-insert-timestamp
            -Wl,--dynamicbase -Wl,--nxcompat -Wl,--high-entropy-va)
        # Two builds of one source are the same file, whenever they are made.
        target_link_options(project_hardening INTERFACE -Wl,--no-insert-timestamp)
    else()
        target_link_options(project_hardening INTERFACE
            -s -Wl,-z,relro -Wl,-z,now -Wl,--gc-sections)
    endif()
    target_compile_options(project_hardening INTERFACE -ffunction-sections -fdata-sections)
endif()
