# The DLLs and Qt plug-ins that the Windows programs of the build need beside
# them in ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}: the mingw runtime of the -posix
# compilers, Qt's DLLs, and the platform and style plug-ins.
set(_dialix_bin ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
file(MAKE_DIRECTORY ${_dialix_bin})

set(DIALIX_MINGW_RUNTIME_DLLS)
foreach(_dll libwinpthread-1.dll libgcc_s_seh-1.dll libstdc++-6.dll)
    if(NOT MINGW)
        break() # MSVC's runtime is the system's
    endif()
    find_file(_dialix_dll_${_dll} ${_dll}
        PATHS ${DIALIX_MINGW_RUNTIME_DIRS} NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
    list(APPEND DIALIX_MINGW_RUNTIME_DLLS ${_dialix_dll_${_dll}})
endforeach()

get_target_property(_dialix_qtcore Qt5::Core IMPORTED_LOCATION_RELEASE)
get_filename_component(_dialix_qt_bin ${_dialix_qtcore} DIRECTORY)
get_filename_component(_dialix_qt_prefix ${_dialix_qt_bin} DIRECTORY)
set(DIALIX_QT_DLLS)
foreach(_module Core Gui Widgets Test)
    list(APPEND DIALIX_QT_DLLS ${_dialix_qt_bin}/Qt5${_module}.dll)
endforeach()

file(COPY ${DIALIX_MINGW_RUNTIME_DLLS} ${DIALIX_QT_DLLS} DESTINATION ${_dialix_bin})
foreach(_dir platforms styles)
    if(EXISTS ${_dialix_qt_prefix}/plugins/${_dir})
        file(COPY ${_dialix_qt_prefix}/plugins/${_dir} DESTINATION ${_dialix_bin}
            FILES_MATCHING PATTERN "*.dll")
    endif()
endforeach()
