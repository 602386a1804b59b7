# The warnings of the project's own targets, as errors; third-party code never links this.
add_library(project_warnings INTERFACE)
target_compile_options(project_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Werror
    -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Wold-style-cast
    -Woverloaded-virtual -Wcast-align -Wunused -Wformat=2 -Wimplicit-fallthrough
    -Wdouble-promotion)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(project_warnings INTERFACE
        -Wduplicated-cond -Wlogical-op -Wmisleading-indentation)
    if(NOT CMAKE_BUILD_TYPE STREQUAL "Release")
        # With the sanitizers on, the compiler takes the library's regular expressions for
        # uninitialised.
        target_compile_options(project_warnings INTERFACE -Wno-maybe-uninitialized)
    endif()
endif()
