# Whole call stacks are needed to tell a leak of Qt's plugins, which are listed, from one
# of ours.
if(NOTCHBENCH_SANITIZER MATCHES "address")
    set(NOTCHBENCH_SANITIZER_ENVIRONMENT
        "ASAN_OPTIONS=fast_unwind_on_malloc=0"
        "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/cmake/leaks.supp:print_suppressions=0")
endif()
if(NOTCHBENCH_SANITIZER MATCHES "thread")
    set(NOTCHBENCH_SANITIZER_ENVIRONMENT
        "TSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/cmake/races.supp:ignore_noninstrumented_modules=1:history_size=4")
endif()

# notchbench_test(<name> FILES ... LINKS ... [WINDOW] [LABELS ...] [LOCKS ...] [TIMEOUT s]
#                [LIBRARY_PATH folder])
# makes one Qt Test program and its CTest entry. WINDOW marks a test that drives
# widgets; it runs on the offscreen platform. Every test has a home of its own, so
# that none reads or writes the settings of the person who runs it.
function(notchbench_test name)
    cmake_parse_arguments(ARG "WINDOW" "TIMEOUT;LIBRARY_PATH" "FILES;LINKS;LABELS;LOCKS" ${ARGN})
    add_executable(${name} ${ARG_FILES})
    target_link_libraries(${name} PRIVATE notchbench_options ${ARG_LINKS} Qt5::Test)
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    target_compile_definitions(${name} PRIVATE
        NOTCHBENCH_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data"
        NOTCHBENCH_SOURCE_DIR="${PROJECT_SOURCE_DIR}")

    set(home ${CMAKE_BINARY_DIR}/test-homes/${name})
    file(MAKE_DIRECTORY ${home}/run)
    file(CHMOD ${home}/run DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
    add_test(NAME ${name} COMMAND ${name})
    set(environment HOME=${home} XDG_DATA_HOME=${home}/data XDG_RUNTIME_DIR=${home}/run
        QT_LOGGING_RULES=qt.qpa.*=false)
    if(ARG_WINDOW)
        list(APPEND environment QT_QPA_PLATFORM=offscreen)
    endif()
    if(ARG_LIBRARY_PATH) # where the program under test finds libraries at run time
        list(APPEND environment LD_LIBRARY_PATH=${ARG_LIBRARY_PATH})
    endif()
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 120)
    endif()
    if(NOTCHBENCH_SANITIZER) # several times slower
        math(EXPR ARG_TIMEOUT "4 * ${ARG_TIMEOUT}")
    endif()
    set_tests_properties(${name} PROPERTIES
        ENVIRONMENT "${environment};${NOTCHBENCH_SANITIZER_ENVIRONMENT}"
        TIMEOUT ${ARG_TIMEOUT}
        LABELS "${ARG_LABELS}"
        RESOURCE_LOCK "${ARG_LOCKS}")
endfunction()
