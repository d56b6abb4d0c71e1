# NOTCHBENCH_OWN_NETWORK is what stands before a command that takes fixed ports, to give it a network
# of its own; nothing where the system refuses that. Asked anew at every configuration.
set(NOTCHBENCH_OWN_NETWORK "")
set(source ${PROJECT_SOURCE_DIR}/tests/kit/own_network.cpp)
if(CMAKE_SYSTEM_NAME STREQUAL "Linux" AND NOT CMAKE_CROSSCOMPILING)
    unset(own_network_status CACHE)
    try_run(own_network_status own_network_compiles
        ${CMAKE_BINARY_DIR}/CMakeFiles/own_network ${source} ARGS true)
    if(own_network_status EQUAL 0)
        add_executable(own_network ${source})
        # Without sanitizers: their threads would be in the way of a namespace of users.
        target_compile_options(own_network PRIVATE -fno-sanitize=all)
        target_link_options(own_network PRIVATE -fno-sanitize=all)
        set(NOTCHBENCH_OWN_NETWORK $<TARGET_FILE:own_network>)
    else()
        message(STATUS "Tests share this machine's ports 1000 and 5025: "
            "the system allows no networks of their own")
    endif()
endif()
