# cmake --install build/PRESET --prefix DIR lays out a directory to run or copy. It is a
# directory of its own: the programs look for their files beside themselves, so that bin/ and share/
# of a system's prefix would not do.
#
# Its parts are components, of which scripts/package makes the packages. Those that are excluded from all
# are installed only when they are named: cmake --install build/PRESET --prefix DIR --component docs.
if(CMAKE_INSTALL_PREFIX_INITIALIZED_TO_DEFAULT)
    set(CMAKE_INSTALL_PREFIX ${CMAKE_BINARY_DIR}/install CACHE PATH "" FORCE)
endif()

# The port in four bytes. It is written here, for an editor would add a line end to a source file;
# the programs read the first bytes unchanged.
set(port_file ${CMAKE_BINARY_DIR}/port/Socket.cfg)
file(WRITE ${port_file} "8738")

# install_port_file(COMPONENT FOLDER): one that is there already may have been edited, and stays. So does a
# link, wherever it leads: the programs tell that they refuse it.
function(install_port_file component folder)
    cmake_path(APPEND folder Socket.cfg OUTPUT_VARIABLE installed)
    install(CODE "
        set(installed \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${installed}\")
        if(EXISTS \"\${installed}\" OR IS_SYMLINK \"\${installed}\")
            message(STATUS \"Kept: \${installed}\")
        else()
            file(INSTALL \"${port_file}\" DESTINATION \"\${CMAKE_INSTALL_PREFIX}/${folder}\")
        endif()"
        COMPONENT ${component})
endfunction()

install(TARGETS SarvexToolClient RUNTIME DESTINATION . COMPONENT programs)
if(SARVEX_BUILD_BENCH)
    install(TARGETS SarvexToolBench RUNTIME DESTINATION . COMPONENT programs)
endif()
install_port_file(programs .)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples DESTINATION . COMPONENT examples
    FILES_MATCHING PATTERN "*.csv")

# The simulator has the name of the real daemon's executable, so it keeps to a folder of its own:
# an install over a bench's directory must never replace the real one. The folder is not called vemo,
# so that the program can be copied beside the client on Linux too.
if(SARVEX_BUILD_SIMULATOR)
    install(TARGETS vemo RUNTIME DESTINATION simulator COMPONENT simulator)
    install_port_file(simulator simulator)
endif()

# The pages, side by side as they are in the sources, so that their links hold.
install(FILES README.md CHANGELOG.md CONTRIBUTING.md DESTINATION . COMPONENT docs EXCLUDE_FROM_ALL)
install(DIRECTORY docs DESTINATION . COMPONENT docs EXCLUDE_FROM_ALL)
install(DIRECTORY packaging/completion DESTINATION . COMPONENT completion EXCLUDE_FROM_ALL)

# What runs a plan on many benches, for Linux: it looks for the programs beside its folder, then on the PATH.
install(DIRECTORY farm DESTINATION . COMPONENT farm EXCLUDE_FROM_ALL USE_SOURCE_PERMISSIONS)

if(SARVEX_BUILD_SDK)
    include(cmake/Sdk.cmake)
endif()
