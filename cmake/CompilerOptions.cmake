# How every file of ours is compiled.
#
# -ffp-contract=off: the samples are fixed to the bit, so no compiler may fuse a
# multiplication with an addition. For the same reason nothing here ever
# switches on -ffast-math or one of its parts.
set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
# Without the times of the pictures' files, which differ from one checkout to the next.
set(CMAKE_AUTORCC_OPTIONS --format-version 1)

add_compile_options(-ffp-contract=off)

if(NOTCHBENCH_SANITIZER)
    add_compile_options(-fsanitize=${NOTCHBENCH_SANITIZER} -fno-omit-frame-pointer
                        -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${NOTCHBENCH_SANITIZER})
endif()

# Warnings, for our own targets only.
add_library(notchbench_options INTERFACE)
target_compile_options(notchbench_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
target_compile_definitions(notchbench_options INTERFACE
    QT_DEPRECATED_WARNINGS QT_NO_CAST_TO_ASCII)

# notchbench_library(<folder> [MOC] FILES ... [DEPENDS ...] [PRIVATE_DEPENDS ...])
# makes the static library of one folder of src/. Headers are included by their
# path below src/, as in "setup/signal_data.h". MOC says that there is a Q_OBJECT
# among them: the search costs every build time, so only such folders have it.
# Without it the linker misses a vtable.
function(notchbench_library name)
    cmake_parse_arguments(ARG "MOC" "" "FILES;DEPENDS;PRIVATE_DEPENDS" ${ARGN})
    add_library(notchbench_${name} STATIC ${ARG_FILES})
    set_target_properties(notchbench_${name} PROPERTIES AUTOMOC ${ARG_MOC})
    target_include_directories(notchbench_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(notchbench_${name}
        PUBLIC ${ARG_DEPENDS}
        PRIVATE notchbench_options ${ARG_PRIVATE_DEPENDS})
endfunction()

# In the programs themselves, where no file needs to be found or read.
if(NOTCHBENCH_SANITIZER MATCHES "address")
    add_library(notchbench_known_leaks OBJECT cmake/known_leaks.cpp)
    target_sources(notchbench_options INTERFACE
        $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:$<TARGET_OBJECTS:notchbench_known_leaks>>)
endif()

# Before the libraries of Qt, whose functions it catches.
if(NOTCHBENCH_SANITIZER MATCHES "thread")
    add_library(notchbench_thread_edges SHARED cmake/thread_sanitizer_edges.cpp)
    target_link_libraries(notchbench_thread_edges PRIVATE Qt5::Core ${CMAKE_DL_LIBS})
    target_link_libraries(notchbench_options INTERFACE
        -Wl,--no-as-needed notchbench_thread_edges -Wl,--as-needed)
endif()
