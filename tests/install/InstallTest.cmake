# The install test: installs the build into a fresh prefix, builds the outside client project
# tests/client against it with find_package, and runs it. Skipped under the sanitizers, where
# the installed libraries would need an instrumented client.
if(NOT SETTINGSCORE_SANITIZE)
    add_test(NAME install_and_build_client
             COMMAND ${CMAKE_COMMAND}
                     -DBUILD_DIR=${PROJECT_BINARY_DIR}
                     -DCLIENT_SOURCE_DIR=${CMAKE_CURRENT_SOURCE_DIR}/client
                     -DEXAMPLES_DIR=${PROJECT_SOURCE_DIR}/examples
                     -DWORK_DIR=${PROJECT_BINARY_DIR}/install-test
                     -DGENERATOR=${CMAKE_GENERATOR}
                     -P ${CMAKE_CURRENT_SOURCE_DIR}/install/RunInstallTest.cmake)
    set_tests_properties(install_and_build_client PROPERTIES TIMEOUT 600 RUN_SERIAL TRUE)
endif()
