# Makes the release: the staged installation STAGE_DIR (what the zip holds,
# also used by the package tests and scripts/run.sh) and the zip ZIP_FILE.
# Run with cmake -P; BUILD_DIR holds the built programs and the manual,
# DIST_DIR the files that ship beside them.
foreach(var BUILD_DIR DIST_DIR STAGE_DIR ZIP_FILE)
    if(NOT DEFINED ${var})
        message(FATAL_ERROR "package.cmake: ${var} not given")
    endif()
endforeach()

# Rebuilt from nothing, so that a file dropped from the release leaves it.
file(REMOVE_RECURSE "${STAGE_DIR}")
file(MAKE_DIRECTORY "${STAGE_DIR}")
set(entries zorvi.exe mmlc.exe Zorvi.chm README.txt cfg examples)
foreach(program zorvi.exe mmlc.exe Zorvi.chm)
    if(NOT EXISTS "${BUILD_DIR}/${program}")
        message(FATAL_ERROR "package.cmake: ${BUILD_DIR}/${program} is missing"
                            " (Zorvi.chm needs chmcmd: bash scripts/deps.sh installs it)")
    endif()
    file(COPY "${BUILD_DIR}/${program}" DESTINATION "${STAGE_DIR}")
endforeach()
file(COPY "${DIST_DIR}/README.txt" "${DIST_DIR}/cfg" "${DIST_DIR}/examples"
     DESTINATION "${STAGE_DIR}")

file(REMOVE "${ZIP_FILE}")
execute_process(
    COMMAND "${CMAKE_COMMAND}" -E tar cf "${ZIP_FILE}" --format=zip -- ${entries}
    WORKING_DIRECTORY "${STAGE_DIR}"
    RESULT_VARIABLE failed)
if(failed)
    message(FATAL_ERROR "package.cmake: the zip could not be written")
endif()
