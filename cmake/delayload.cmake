# The system DLLs that only windows, dialogs and the shell need are bound on
# their first call, not at process start: a command-line compile that ends
# well then never loads them (under Wine comctl32 alone costs ~50 ms, as it
# connects to the display while it loads; user32 and gdi32 set up the window
# system and the fonts as they load, and shlwapi brings both with it). Sets
# ZORVI_DELAYED_LIBS to what the program links ahead of the plain import
# libraries.
set(zorvi_delayed_dlls comctl32 comdlg32 shell32 ole32 user32 gdi32 shlwapi)
set(ZORVI_DELAYED_LIBS)
if(MINGW)
    string(REGEX REPLACE "g\\+\\+(-posix)?$" "dlltool" zorvi_dlltool "${CMAKE_CXX_COMPILER}")
    string(REGEX REPLACE "g\\+\\+(-posix)?$" "nm" zorvi_nm "${CMAKE_CXX_COMPILER}")
    set(outputs)
    foreach(dll IN LISTS zorvi_delayed_dlls)
        find_library(zorvi_importlib_${dll} NAMES lib${dll}.a ${dll})
        if(NOT zorvi_importlib_${dll})
            message(FATAL_ERROR "MinGW import library lib${dll}.a not found")
        endif()
        set(out ${CMAKE_BINARY_DIR}/delayload/lib${dll}_delay.a)
        add_custom_command(
            OUTPUT ${out}
            COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/delayload
            COMMAND bash ${CMAKE_SOURCE_DIR}/cmake/make-delaylib.sh ${zorvi_dlltool} ${zorvi_nm}
                    ${zorvi_importlib_${dll}} ${dll}.dll ${out}
            DEPENDS ${CMAKE_SOURCE_DIR}/cmake/make-delaylib.sh
            VERBATIM)
        list(APPEND outputs ${out})
        list(APPEND ZORVI_DELAYED_LIBS ${out})
    endforeach()
    add_custom_target(zorvi_delaylibs DEPENDS ${outputs})
elseif(MSVC)
    foreach(dll IN LISTS zorvi_delayed_dlls)
        add_link_options(/DELAYLOAD:${dll}.dll)
        list(APPEND ZORVI_DELAYED_LIBS ${dll})
    endforeach()
    list(APPEND ZORVI_DELAYED_LIBS delayimp)
else()
    set(ZORVI_DELAYED_LIBS ${zorvi_delayed_dlls})
endif()
