# Warnings for our own code; nothing of this reaches a host.
function(kelvosgtools_enable_warnings target)
    if(MSVC)
        # 4251: members of exported classes are standard and Qt types, which host and library share anyway.
        target_compile_options(${target} PRIVATE /W4 /wd4251 $<$<BOOL:${KELVOSGTOOLS_WARNINGS_AS_ERRORS}>:/WX>)
    else()
        target_compile_options(
            ${target}
            PRIVATE -Wall
                    -Wextra
                    -Wpedantic
                    -Wshadow
                    -Wconversion
                    -Wnon-virtual-dtor
                    $<$<BOOL:${KELVOSGTOOLS_WARNINGS_AS_ERRORS}>:-Werror>)
    endif()
endfunction()
