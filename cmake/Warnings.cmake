# The warnings of the project's own targets, as errors; third-party code never links this.
add_library(project_warnings INTERFACE)
target_compile_options(project_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Werror
    -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Wold-style-cast
    -Woverloaded-virtual -Wcast-align -Wunused -Wformat=2 -Wimplicit-fallthrough
    -Wdouble-promotion -Wnull-dereference)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(project_warnings INTERFACE
        -Wduplicated-cond -Wlogical-op -Wmisleading-indentation)
    if(NOT CMAKE_BUILD_TYPE STREQUAL "Release")
        # The sanitizers' own checks make the compiler see null where there is none.
        target_compile_options(project_warnings INTERFACE -Wno-null-dereference)
    endif()
endif()
