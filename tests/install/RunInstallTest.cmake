# cmake -P script run by the install test; see InstallTest.cmake.
foreach(var BUILD_DIR CLIENT_SOURCE_DIR EXAMPLES_DIR WORK_DIR GENERATOR)
    if(NOT DEFINED ${var})
        message(FATAL_ERROR "${var} is not set")
    endif()
endforeach()

file(REMOVE_RECURSE ${WORK_DIR})
set(prefix "${WORK_DIR}/prefix with blank")

function(run_step what)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
    if(NOT rc EQUAL 0)
        message(FATAL_ERROR "${what} failed (${rc}):\n${out}\n${err}")
    endif()
    set(step_output "${out}" PARENT_SCOPE)
endfunction()

run_step("install" ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix "${prefix}")

foreach(expected
        lib/libsettingscore.so lib/libtvplatform.so
        include/settingscore/settingscore.hpp
        lib/cmake/settingscore/settingscoreConfig.cmake
        resources/messages/TOLVAN/settings/core.xml
        toolbox/tolvan/configtools/settings.xsd)
    if(NOT EXISTS "${prefix}/${expected}")
        message(FATAL_ERROR "the install lacks ${expected}")
    endif()
endforeach()

run_step("configure the client" ${CMAKE_COMMAND} -S ${CLIENT_SOURCE_DIR} -B ${WORK_DIR}/client
         -G ${GENERATOR} "-DCMAKE_PREFIX_PATH=${prefix}")
run_step("build the client" ${CMAKE_COMMAND} --build ${WORK_DIR}/client)
run_step("run the client" ${WORK_DIR}/client/settingscore_client)
message(STATUS "client output:\n${step_output}")
if(NOT step_output MATCHES "client: ok")
    message(FATAL_ERROR "the client did not report success")
endif()

# The README's embedding example over the sample products, with a fresh user folder.
file(MAKE_DIRECTORY "${WORK_DIR}/user")
run_step("run the embedding example" ${CMAKE_COMMAND} -E env
         "SETTINGS_FACTORYDIR=${EXAMPLES_DIR}/factory" "SETTINGS_USERDIR=${WORK_DIR}/user"
         ${WORK_DIR}/client/embedding)
message(STATUS "embedding output:\n${step_output}")
if(NOT step_output MATCHES "tabWidth = 4\nchanged: editor.tabWidth\nrefused: ")
    message(FATAL_ERROR "the embedding example did not read, write, hear and refuse")
endif()
if(NOT EXISTS "${WORK_DIR}/user/editor.settings")
    message(FATAL_ERROR "the embedding example's write did not reach the user file")
endif()
