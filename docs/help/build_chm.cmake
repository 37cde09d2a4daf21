# Compiles the manual into Zorvi.chm; run by the build as a CMake script.
#
# chmcmd writes its output where it runs and reports a missing file or a
# broken link only as a warning while still exiting 0, so the project is
# compiled in a fresh copy under the build tree (the sources stay clean) and
# any warning fails the build.
#
# Variables: CHMCMD (the compiler), SOURCE_DIR (docs/help), IMAGE_DIR (where
# the pictures the project lists live when they are not in SOURCE_DIR),
# STAGE_DIR (the copy), OUTPUT (the finished Zorvi.chm).
foreach(variable CHMCMD SOURCE_DIR IMAGE_DIR STAGE_DIR OUTPUT)
    if(NOT DEFINED ${variable})
        message(FATAL_ERROR "build_chm.cmake needs -D${variable}=...")
    endif()
endforeach()

set(project_file ${SOURCE_DIR}/Zorvi.hhp)
file(REMOVE_RECURSE ${STAGE_DIR})
file(MAKE_DIRECTORY ${STAGE_DIR})
file(COPY ${project_file} ${SOURCE_DIR}/Zorvi.hhc ${SOURCE_DIR}/Zorvi.hhk DESTINATION ${STAGE_DIR})

# Exactly the files of the project's [FILES] section go into the copy, so a
# page the project forgets cannot slip in through a link.
file(STRINGS ${project_file} lines)
set(in_files OFF)
foreach(line IN LISTS lines)
    string(STRIP "${line}" line)
    if(line MATCHES "^\\[")
        string(TOUPPER "${line}" section)
        set(in_files OFF)
        if(section STREQUAL "[FILES]")
            set(in_files ON)
        endif()
    elseif(in_files AND NOT line STREQUAL "" AND NOT line MATCHES "^;")
        if(EXISTS ${SOURCE_DIR}/${line})
            file(COPY ${SOURCE_DIR}/${line} DESTINATION ${STAGE_DIR})
        elseif(EXISTS ${IMAGE_DIR}/${line})
            file(COPY ${IMAGE_DIR}/${line} DESTINATION ${STAGE_DIR})
        else()
            message(FATAL_ERROR "Zorvi.hhp lists ${line}, which is neither in ${SOURCE_DIR} nor in ${IMAGE_DIR}")
        endif()
    endif()
endforeach()

execute_process(
    COMMAND ${CHMCMD} Zorvi.hhp
    WORKING_DIRECTORY ${STAGE_DIR}
    RESULT_VARIABLE status
    OUTPUT_VARIABLE output
    ERROR_VARIABLE output
    TIMEOUT 120)
if(NOT status EQUAL 0 OR output MATCHES "Warning|Error|rror:|Can't|[Ee]xception"
   OR NOT EXISTS ${STAGE_DIR}/Zorvi.chm)
    message(FATAL_ERROR "chmcmd could not compile the manual (exit status ${status}):\n${output}")
endif()
file(COPY_FILE ${STAGE_DIR}/Zorvi.chm ${OUTPUT})
