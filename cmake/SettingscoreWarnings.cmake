option(SETTINGSCORE_WERROR "Treat compiler warnings as errors" OFF)

# Warnings every target of the project is held to.
function(settingscore_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra)
    if(SETTINGSCORE_WERROR)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
endfunction()
