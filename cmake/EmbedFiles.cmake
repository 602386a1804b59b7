# embed_files(TARGET HEADER NAMESPACE name file [name file ...]): adds the bytes of each file to the
# target, as a std::string_view of that name. HEADER, in the folder that calls, declares them.
#
# The file with the definitions is made in the build directory, by this very file run as a script,
# whenever one of the files has changed.
if(NOT CMAKE_SCRIPT_MODE_FILE)
    set(embed_files_script ${CMAKE_CURRENT_LIST_FILE})

    function(embed_files target header namespace)
        file(RELATIVE_PATH header ${PROJECT_SOURCE_DIR}/src ${CMAKE_CURRENT_SOURCE_DIR}/${header})
        set(output ${CMAKE_CURRENT_BINARY_DIR}/${target}Embedded.cpp)
        set(files ${ARGN})
        list(FILTER files INCLUDE REGEX "/")
        add_custom_command(
            OUTPUT ${output}
            COMMAND ${CMAKE_COMMAND} -DOUTPUT=${output} -DHEADER=${header} -DNAMESPACE=${namespace}
                "-DFILES=${ARGN}" -P ${embed_files_script}
            DEPENDS ${files} ${embed_files_script}
            COMMENT "Embedding files into ${target}"
            VERBATIM)
        target_sources(${target} PRIVATE ${output})
    endfunction()
    return()
endif()

# A raw string: the delimiter is one that no file of this kind holds.
set(delimiter "=embedded=")
set(source "#include \"${HEADER}\"\n\nnamespace ${NAMESPACE} {\n")
while(FILES)
    list(POP_FRONT FILES name file)
    file(READ ${file} content)
    string(FIND "${content}" ")${delimiter}\"" found)
    if(NOT found EQUAL -1)
        message(FATAL_ERROR "${file} holds )${delimiter}\"")
    endif()
    string(APPEND source
        "\nconst std::string_view ${name} = R\"${delimiter}(${content})${delimiter}\";\n")
endwhile()
file(WRITE ${OUTPUT} "${source}\n} // namespace ${NAMESPACE}\n")
