# The client library of PostgreSQL, for a history on a server, on Linux alone: programs for Windows keep theirs in
# files. Of its parts, what one that is linked statically without TLS, Kerberos and LDAP needs. Who the user is and
# where his home is, it is told by the program (LibpqUser.cpp): the system's list of users may be kept by
# services that a program with a C library of its own cannot load.
set(libpq_folder ${PROJECT_SOURCE_DIR}/third_party/libpq)
file(GLOB libpq_sources CONFIGURE_DEPENDS
    ${libpq_folder}/src/common/*.c ${libpq_folder}/src/interfaces/libpq/*.c ${libpq_folder}/src/port/*.c)
add_library(libpq STATIC EXCLUDE_FROM_ALL ${libpq_sources})
set_target_properties(libpq PROPERTIES PREFIX "")
target_include_directories(libpq
    SYSTEM PUBLIC ${libpq_folder}/src/interfaces/libpq ${libpq_folder}/src/include
    PRIVATE ${libpq_folder}/src/port ${libpq_folder}/src/common)
target_compile_definitions(libpq PRIVATE FRONTEND _GNU_SOURCE UNSAFE_STAT_OK SO_MAJOR_VERSION=5)
# As its own build has them: its sources count on it. Its warnings are its authors' matter.
target_compile_options(libpq PRIVATE -w -fno-strict-aliasing -fwrapv -ffunction-sections -fdata-sections)
if(CMAKE_BUILD_TYPE STREQUAL "Release")
    target_compile_options(libpq PRIVATE -fstack-protector-strong -D_FORTIFY_SOURCE=2)
endif()
