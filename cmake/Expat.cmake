# Expat, the XML parser, from the sources in third_party, for every target alike: there is no package of
# it for mingw. General entities and external subsets are left out, so that no file can grow while it is
# read or name another one.
set(expat_folder ${PROJECT_SOURCE_DIR}/third_party/expat)
# Its sources include the header that its own build system would make; the definitions are below.
file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/third_party/expat/expat_config.h CONTENT "")
add_library(expat STATIC EXCLUDE_FROM_ALL
    ${expat_folder}/xmlparse.c
    ${expat_folder}/xmlrole.c
    ${expat_folder}/xmltok.c
    ${expat_folder}/$<IF:$<BOOL:${WIN32}>,random_rand_s.c,random_getrandom.c>)
target_include_directories(expat SYSTEM PUBLIC ${expat_folder})
target_include_directories(expat PRIVATE ${CMAKE_BINARY_DIR}/third_party/expat)
target_compile_definitions(expat
    PUBLIC XML_STATIC
    PRIVATE XML_GE=0 XML_CONTEXT_BYTES=0 $<$<NOT:$<BOOL:${WIN32}>>:HAVE_GETRANDOM>)
