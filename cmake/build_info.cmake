# The build's own facts for the about window: the build date and the
# maker's web address (cache variable ZORVI_HOMEPAGE, empty by default).
# Sets ZORVI_BUILD_DATE and ZORVI_HOMEPAGE_C (the address as C string text).
# The about window's build date is the date of the source's last commit,
# so that two builds of one checkout agree; sources without history take
# the day they are configured. A new commit configures again.
set(ZORVI_HOMEPAGE "" CACHE STRING
    "The maker's web address in the about window; empty hides the link")
set(ZORVI_BUILD_DATE "")
find_package(Git QUIET)
if(GIT_FOUND)
    execute_process(COMMAND ${GIT_EXECUTABLE} log -1 --format=%cd --date=format:%Y%m%d
                    WORKING_DIRECTORY ${CMAKE_SOURCE_DIR}
                    OUTPUT_VARIABLE ZORVI_BUILD_DATE OUTPUT_STRIP_TRAILING_WHITESPACE
                    RESULT_VARIABLE git_log_result ERROR_QUIET)
    if(NOT git_log_result EQUAL 0 OR NOT ZORVI_BUILD_DATE MATCHES "^[0-9]+$")
        set(ZORVI_BUILD_DATE "")
    endif()
    execute_process(COMMAND ${GIT_EXECUTABLE} rev-parse --git-path HEAD
                            --git-path packed-refs --symbolic-full-name HEAD
                    WORKING_DIRECTORY ${CMAKE_SOURCE_DIR}
                    OUTPUT_VARIABLE git_paths OUTPUT_STRIP_TRAILING_WHITESPACE
                    RESULT_VARIABLE git_paths_result ERROR_QUIET)
    if(git_paths_result EQUAL 0)
        string(REPLACE "\n" ";" git_paths "${git_paths}")
        list(GET git_paths 2 head_ref)
        execute_process(COMMAND ${GIT_EXECUTABLE} rev-parse --git-path ${head_ref}
                        WORKING_DIRECTORY ${CMAKE_SOURCE_DIR}
                        OUTPUT_VARIABLE head_ref_path OUTPUT_STRIP_TRAILING_WHITESPACE
                        ERROR_QUIET)
        list(REMOVE_AT git_paths 2)
        list(APPEND git_paths ${head_ref_path})
        foreach(git_path IN LISTS git_paths)
            get_filename_component(git_path ${git_path} ABSOLUTE BASE_DIR ${CMAKE_SOURCE_DIR})
            if(EXISTS ${git_path})
                set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${git_path})
            endif()
        endforeach()
    endif()
endif()
if(ZORVI_BUILD_DATE STREQUAL "")
    string(TIMESTAMP ZORVI_BUILD_DATE "%Y%m%d")
endif()
# The address goes into a C string as it was given.
string(REPLACE "\\" "\\\\" ZORVI_HOMEPAGE_C "${ZORVI_HOMEPAGE}")
string(REPLACE "\"" "\\\"" ZORVI_HOMEPAGE_C "${ZORVI_HOMEPAGE_C}")
