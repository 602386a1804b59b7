# cmake --install build/PRESET --prefix DIR lays out a directory to run or copy. It is a
# directory of its own: the programs look for their files beside themselves, so that bin/ and share/
# of a system's prefix would not do.
if(CMAKE_INSTALL_PREFIX_INITIALIZED_TO_DEFAULT)
    set(CMAKE_INSTALL_PREFIX ${CMAKE_BINARY_DIR}/install CACHE PATH "" FORCE)
endif()

# The port in four bytes. It is written here, for an editor would add a line end to a source file;
# the programs read the first bytes unchanged.
set(port_file ${CMAKE_BINARY_DIR}/port/Socket.cfg)
file(WRITE ${port_file} "8738")

install(TARGETS SarvexToolClient RUNTIME DESTINATION .)
if(SARVEX_BUILD_BENCH)
    install(TARGETS SarvexToolBench RUNTIME DESTINATION .)
endif()
install(FILES ${port_file} DESTINATION .)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples DESTINATION . FILES_MATCHING PATTERN "*.csv")

# The simulator has the name of the real daemon's executable, so it keeps to a folder of its own:
# an install over a bench's directory must never replace the real one. The folder is not called vemo,
# so that the program can be copied beside the client on Linux too.
if(SARVEX_BUILD_SIMULATOR)
    install(TARGETS vemo RUNTIME DESTINATION simulator)
    install(FILES ${port_file} DESTINATION simulator)
endif()
