# cmake --build build/dev --target reference: the reference as HTML, from the comments of the public
# headers and the code of the examples. A public name without a comment is an error.
find_package(Doxygen QUIET)
if(DOXYGEN_FOUND)
    set(KELVOSGTOOLS_REFERENCE_DIR "${PROJECT_BINARY_DIR}/reference")
    configure_file("${PROJECT_SOURCE_DIR}/docs/Doxyfile.in" "${PROJECT_BINARY_DIR}/Doxyfile" @ONLY)
    file(MAKE_DIRECTORY "${KELVOSGTOOLS_REFERENCE_DIR}")
    add_custom_target(
        reference
        COMMAND Doxygen::doxygen "${PROJECT_BINARY_DIR}/Doxyfile"
        COMMENT "Writing the reference to ${KELVOSGTOOLS_REFERENCE_DIR}/html"
        VERBATIM)
    if(KELVOSGTOOLS_BUILD_TESTS)
        add_test(NAME Reference.IsCompleteAndWithoutWarning COMMAND Doxygen::doxygen "${PROJECT_BINARY_DIR}/Doxyfile")
    endif()
endif()
