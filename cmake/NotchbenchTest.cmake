include(${CMAKE_CURRENT_LIST_DIR}/OwnNetwork.cmake)
include(${CMAKE_CURRENT_LIST_DIR}/TestProgram.cmake)

if(NOTCHBENCH_SANITIZER MATCHES "thread")
    set(NOTCHBENCH_SANITIZER_ENVIRONMENT
        "TSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/cmake/races.supp:ignore_noninstrumented_modules=1:history_size=4")
endif()

# notchbench_test_entry(<entry> <name> [FUNCTIONS ...] [EXCEPT ...] [SERIAL] ...)
# makes one CTest entry of a test program: with the named test functions, with all but the named
# ones, or with all. Every entry has a home of its own, so that none reads or writes the settings of
# the person who runs it or of another. Slow entries start first, the longest before all others, so
# that none of them is left alone at the end. The other options are those of notchbench_test.
function(notchbench_test_entry entry name)
    cmake_parse_arguments(ARG "WINDOW;SERIAL;LONG" "TIMEOUT;LIBRARY_PATH"
        "FUNCTIONS;EXCEPT;LABELS;LOCKS" ${ARGN})
    set(network "")
    if(ARG_LOCKS AND NOTCHBENCH_OWN_NETWORK)
        set(network ${NOTCHBENCH_OWN_NETWORK})
        set(ARG_LOCKS "")
        add_dependencies(${name} own_network)
    endif()
    if(ARG_EXCEPT)
        list(JOIN ARG_EXCEPT "|" except)
        add_test(NAME ${entry} COMMAND ${network} sh -c
            "exec \"$0\" $(\"$0\" -functions | tr -d '()' | grep -vxE '${except}')"
            $<TARGET_FILE:${name}>)
    else()
        add_test(NAME ${entry} COMMAND ${network} $<TARGET_FILE:${name}> ${ARG_FUNCTIONS})
    endif()

    set(home ${CMAKE_BINARY_DIR}/test-homes/${entry})
    file(MAKE_DIRECTORY ${home}/run)
    file(CHMOD ${home}/run DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
    set(environment HOME=${home} XDG_DATA_HOME=${home}/data XDG_RUNTIME_DIR=${home}/run
        QT_LOGGING_RULES=qt.qpa.*=false)
    if(ARG_WINDOW)
        list(APPEND environment QT_QPA_PLATFORM=offscreen)
    endif()
    if(ARG_LIBRARY_PATH) # where the program under test finds libraries at run time
        list(APPEND environment LD_LIBRARY_PATH=${ARG_LIBRARY_PATH})
    endif()
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 300) # many times what any takes, as the machine may be busy
    endif()
    if(NOTCHBENCH_SANITIZER) # several times slower
        math(EXPR ARG_TIMEOUT "4 * ${ARG_TIMEOUT}")
        list(APPEND environment QTEST_FUNCTION_TIMEOUT=${ARG_TIMEOUT}000) # milliseconds
    endif()
    set(cost 0)
    if(ARG_LONG)
        set(cost 100)
    elseif("slow" IN_LIST ARG_LABELS)
        set(cost 10)
    endif()
    set_tests_properties(${entry} PROPERTIES
        ENVIRONMENT "${environment};${NOTCHBENCH_SANITIZER_ENVIRONMENT}"
        COST ${cost}
        TIMEOUT ${ARG_TIMEOUT}
        LABELS "${ARG_LABELS}"
        RUN_SERIAL ${ARG_SERIAL}
        RESOURCE_LOCK "${ARG_LOCKS}")
endfunction()

# notchbench_test(<name> FILES ... LINKS ... [TIMED ...] [SLOW ...] [WINDOW] [LONG]
#                [LABELS ...] [LOCKS ...] [TIMEOUT s] [LIBRARY_PATH folder])
# makes one Qt Test program and its CTest entries. WINDOW marks a test that drives widgets; it runs
# on the offscreen platform. LOCKS names the fixed ports that a test takes: it has a network of its
# own, or takes turns with the others that name one of them.
#
# TIMED names the test functions that hold the program to a promise about time, which a busy
# machine may break: they are the entry <name>_time, labelled "time", and run alone. SLOW names
# those that take seconds: the entry <name>_slow, labelled "slow". <name> has the others. A program
# that is slow as a whole has the label "slow" itself, and is LONG if it takes half a minute.
function(notchbench_test name)
    cmake_parse_arguments(ARG "WINDOW;LONG" "TIMEOUT;LIBRARY_PATH"
        "FILES;LINKS;TIMED;SLOW;LABELS;LOCKS" ${ARGN})
    notchbench_test_program(${name} FILES ${ARG_FILES} LINKS ${ARG_LINKS})
    foreach(file ${ARG_FILES})
        if(file MATCHES "\\.cpp$")
            notchbench_moc(${name} ${file})
        endif()
    endforeach()
    target_include_directories(${name} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${name}.moc.d)
    target_compile_definitions(${name} PRIVATE
        NOTCHBENCH_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data"
        NOTCHBENCH_SOURCE_DIR="${PROJECT_SOURCE_DIR}")

    set(common LOCKS ${ARG_LOCKS} TIMEOUT ${ARG_TIMEOUT} LIBRARY_PATH ${ARG_LIBRARY_PATH})
    foreach(option WINDOW LONG)
        if(ARG_${option})
            list(APPEND common ${option})
        endif()
    endforeach()
    notchbench_test_entry(${name} ${name} ${common}
        EXCEPT ${ARG_TIMED} ${ARG_SLOW} LABELS ${ARG_LABELS})
    if(ARG_TIMED)
        notchbench_test_entry(${name}_time ${name} ${common}
            FUNCTIONS ${ARG_TIMED} LABELS time SERIAL)
    endif()
    if(ARG_SLOW)
        notchbench_test_entry(${name}_slow ${name} ${common} FUNCTIONS ${ARG_SLOW} LABELS slow)
    endif()
endfunction()
