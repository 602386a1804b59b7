# Compiles through ccache where it is installed, unless a launcher is chosen already (an empty one
# included).
find_program(CCACHE_PROGRAM ccache NO_CMAKE_FIND_ROOT_PATH)
mark_as_advanced(CCACHE_PROGRAM)
foreach(language C CXX)
    if(CCACHE_PROGRAM AND NOT DEFINED CMAKE_${language}_COMPILER_LAUNCHER)
        set(CMAKE_${language}_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
    endif()
endforeach()
