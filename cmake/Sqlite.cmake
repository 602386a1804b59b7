# SQLite, the database of the history, from the amalgamation in third_party, for every target alike. Left out is
# what the history does not use; a database file that somebody else made can load nothing and call nothing.
set(sqlite_folder ${PROJECT_SOURCE_DIR}/third_party/sqlite)
add_library(sqlite STATIC EXCLUDE_FROM_ALL ${sqlite_folder}/sqlite3.c)
target_include_directories(sqlite SYSTEM PUBLIC ${sqlite_folder})
target_compile_definitions(sqlite PRIVATE
    SQLITE_THREADSAFE=1
    # A word in double quotes is never a text.
    SQLITE_DQS=0
    SQLITE_TRUSTED_SCHEMA=0
    SQLITE_DEFAULT_FOREIGN_KEYS=1
    # No file but the store and its journal.
    SQLITE_TEMP_STORE=2
    SQLITE_MAX_ATTACHED=0
    SQLITE_DEFAULT_MEMSTATUS=0
    SQLITE_LIKE_DOESNT_MATCH_BLOBS
    SQLITE_OMIT_DEPRECATED
    SQLITE_OMIT_LOAD_EXTENSION
    SQLITE_OMIT_PROGRESS_CALLBACK
    SQLITE_OMIT_SHARED_CACHE
    SQLITE_OMIT_TCL_VARIABLE
    HAVE_USLEEP=1)
# Its warnings are its authors' matter.
target_compile_options(sqlite PRIVATE -w -ffunction-sections -fdata-sections)
if(CMAKE_BUILD_TYPE STREQUAL "Release")
    target_compile_options(sqlite PRIVATE -fstack-protector-strong -D_FORTIFY_SOURCE=2)
endif()
