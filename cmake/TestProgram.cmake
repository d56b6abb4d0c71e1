# How test programs are compiled. Nearly all that the compiler does for one of them is to read the
# headers of Qt Test, so these are compiled once for programs without widgets and once for those with
# them. A precompiled header serves only programs with the same definitions of Qt's modules: all
# programs of a kind link the same ones. Little optimisation is enough: what the tests compute by
# themselves doesn't take longer for it, and compiling them takes half the time.
#
# Sources name the headers that they use all the same, and compile without this:
# -D CMAKE_DISABLE_PRECOMPILE_HEADERS=ON.
foreach(kind engine window)
    add_library(notchbench_${kind}_tests OBJECT ${PROJECT_SOURCE_DIR}/tests/kit/precompiled.cpp)
    target_link_libraries(notchbench_${kind}_tests PUBLIC
        notchbench_options Qt5::Gui Qt5::Network Qt5::Test)
    target_compile_options(notchbench_${kind}_tests PUBLIC
        $<$<CONFIG:Release,RelWithDebInfo>:-O1>)
    target_precompile_headers(notchbench_${kind}_tests PRIVATE
        <QtTest> <algorithm> <cmath> <complex> <functional> <limits> <map> <memory> <random>
        <string> <thread> <vector>)
endforeach()
target_link_libraries(notchbench_window_tests PUBLIC Qt5::Widgets)
target_precompile_headers(notchbench_window_tests PRIVATE <QtWidgets>)

# Whether one of the libraries is Qt's widgets, or uses them in its headers.
function(notchbench_have_widgets result)
    set(seen "")
    set(next ${ARGN})
    while(next)
        list(POP_FRONT next library)
        if(TARGET ${library} AND NOT library IN_LIST seen)
            list(APPEND seen ${library})
            get_target_property(used ${library} INTERFACE_LINK_LIBRARIES)
            if(used)
                list(APPEND next ${used})
            endif()
        endif()
    endwhile()
    if("Qt5::Widgets" IN_LIST seen)
        set(${result} TRUE PARENT_SCOPE)
    else()
        set(${result} FALSE PARENT_SCOPE)
    endif()
endfunction()

# The code that the meta-object compiler makes of a class in a source file, which includes it as
# "<file>.moc". It looks at this one file, so a program of CMake that searches all is not needed.
function(notchbench_moc name source)
    get_filename_component(base ${source} NAME_WE)
    set(made ${CMAKE_CURRENT_BINARY_DIR}/${name}.moc.d/${base}.moc)
    add_custom_command(OUTPUT ${made}
        COMMAND Qt5::moc -o ${made} ${CMAKE_CURRENT_SOURCE_DIR}/${source}
        DEPENDS ${source}
        VERBATIM)
    target_sources(${name} PRIVATE ${made})
endfunction()

# notchbench_test_program(<name> FILES ... LINKS ...)
# makes a program of the tests.
function(notchbench_test_program name)
    cmake_parse_arguments(ARG "" "" "FILES;LINKS" ${ARGN})
    add_executable(${name} ${ARG_FILES})
    set(kind engine)
    notchbench_have_widgets(widgets ${ARG_LINKS})
    if(widgets)
        set(kind window)
    endif()
    target_link_libraries(${name} PRIVATE notchbench_${kind}_tests ${ARG_LINKS})
    target_precompile_headers(${name} REUSE_FROM notchbench_${kind}_tests)
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
endfunction()
