# Installs a build into a folder of its own, and fails when something is missing there or when a
# validator complains. Run with -DBUILD=<build folder> -DEXPECTED=<paths with commas between>.
set(root ${BUILD}/packaging/installed)
file(REMOVE_RECURSE ${root})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${root}
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)

string(REPLACE "," ";" EXPECTED "${EXPECTED}")
foreach(path IN LISTS EXPECTED)
    if(NOT EXISTS ${root}/${path})
        message(SEND_ERROR "not installed: ${path}")
    endif()
endforeach()

find_program(man man)
if(man)
    file(GLOB pages ${root}/share/man/man1/*.1.gz)
    foreach(page IN LISTS pages)
        execute_process(COMMAND ${man} --warnings=w -l ${page} OUTPUT_QUIET
            ERROR_VARIABLE complaints COMMAND_ERROR_IS_FATAL ANY)
        if(complaints)
            message(SEND_ERROR "${page}: ${complaints}")
        endif()
    endforeach()
endif()

find_program(desktop_file_validate desktop-file-validate)
if(desktop_file_validate)
    file(GLOB entries ${root}/share/applications/*.desktop)
    execute_process(COMMAND ${desktop_file_validate} ${entries} COMMAND_ERROR_IS_FATAL ANY)
endif()
find_program(appstreamcli appstreamcli)
if(appstreamcli)
    file(GLOB metainfo ${root}/share/metainfo/*.xml)
    execute_process(COMMAND ${appstreamcli} validate --no-net ${metainfo}
        COMMAND_ERROR_IS_FATAL ANY)
endif()
