# Run by CPack between installing and packing: adds what Debian wants in every package, and only there.
find_program(GZIP gzip REQUIRED)

file(STRINGS "${CPACK_KELVOSGTOOLS_PACKAGING_DIR}/changelog" latest_entry LIMIT_COUNT 1)
set(packaged_version "${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}")
if(NOT latest_entry MATCHES "\\(${packaged_version}\\)")
    message(FATAL_ERROR "packaging/debian/changelog does not begin with version ${packaged_version}")
endif()

foreach(assignment IN LISTS CPACK_KELVOSGTOOLS_PACKAGES)
    string(REPLACE "=" ";" assignment "${assignment}")
    list(POP_FRONT assignment component package)
    set(root "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/${component}/usr")
    if(NOT EXISTS "${root}")
        continue()
    endif()

    set(documentation "${root}/share/doc/${package}")
    file(COPY "${CPACK_KELVOSGTOOLS_PACKAGING_DIR}/copyright" DESTINATION "${documentation}")
    configure_file("${CPACK_KELVOSGTOOLS_PACKAGING_DIR}/changelog" "${documentation}/changelog.Debian" COPYONLY)

    file(GLOB manual_pages "${root}/share/man/man*/*.[1-9]")
    execute_process(COMMAND "${GZIP}" -9n "${documentation}/changelog.Debian" ${manual_pages} COMMAND_ERROR_IS_FATAL ANY)

    # The installed program looks for the library beside it; the packaged one finds it where all libraries are.
    file(GLOB programs "${root}/bin/*")
    foreach(program IN LISTS programs)
        file(RPATH_REMOVE FILE "${program}")
    endforeach()
endforeach()
