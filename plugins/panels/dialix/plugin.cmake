# The plug-in root and its hot-plug watcher, and the two loadable plug-ins built
# from the part libraries: libdialix.so against the system's hidapi and
# libdialix_virtual.so against the virtual panel.

set(_dialix_src ${CMAKE_CURRENT_SOURCE_DIR}/source)

if(WIN32)
    set(_dialix_watcher_platform ${_dialix_src}/devicewatcher_win.cpp)
else()
    set(_dialix_watcher_platform ${_dialix_src}/devicewatcher_linux.cpp)
endif()
add_library(dialix_devicewatcher STATIC ${_dialix_src}/devicewatcher.h ${_dialix_watcher_platform})
target_link_libraries(dialix_devicewatcher PUBLIC Qt5::Core)
if(NOT WIN32)
    target_link_libraries(dialix_devicewatcher PRIVATE PkgConfig::LIBUDEV)
endif()
dialix_warnings(dialix_devicewatcher)

# The root object with its embedded metadata.
add_library(dialix_root STATIC
    ${_dialix_src}/controldialix.h
    ${_dialix_src}/controldialix.cpp
    ${_dialix_src}/dialix.json)
target_link_libraries(dialix_root PUBLIC dialix_control dialix_devicewatcher dialix_hidapi_headers)
dialix_warnings(dialix_root)

# The loadable plug-ins. The root library goes in whole: nothing inside the
# module refers to the plug-in entry points, the loader does. So does the key
# injector (keys/, dialix_keys): nothing in the plug-in calls it, the host's
# key-control classes do, through SenderKeyToSystem::instance() exported from
# the module. It is part of the plug-in, not a library of its own.
function(dialix_plugin_module target)
    add_library(${target} MODULE ${_dialix_src}/dialix.json)
    # libdialix.so on Linux, dialix.dll on Windows.
    if(WIN32)
        set_target_properties(${target} PROPERTIES LINKER_LANGUAGE CXX PREFIX "")
    else()
        set_target_properties(${target} PROPERTIES LINKER_LANGUAGE CXX PREFIX "lib")
    endif()
    target_link_libraries(${target} PRIVATE
        "$<LINK_LIBRARY:WHOLE_ARCHIVE,dialix_root,dialix_keys>" ${ARGN})
    if(WIN32)
        list(GET ARGN 0 _provider)
        set_target_properties(${target} PROPERTIES DIALIX_HIDAPI_PROVIDER ${_provider})
    endif()
    if(NOT MSVC)
        target_link_options(${target} PRIVATE -Wl,--no-undefined)
    endif()
endfunction()

# libdialix.so: the panels through Debian's hidapi (hidraw back end). hidapi is
# linked in statically and bound inside the module, so the plug-in talks to the
# real bus even in a process that also carries the virtual panel (the reference
# host); its hid_* functions are exported under their own names.
# On Windows hidapi is always static (the toolchain's), and its header marks
# every hid_* function for export.
if(NOT WIN32)
    find_library(DIALIX_HIDAPI_STATIC NAMES libhidapi-hidraw.a)
endif()
if(DIALIX_HIDAPI_STATIC)
    dialix_plugin_module(dialix ${DIALIX_HIDAPI_STATIC} PkgConfig::LIBUDEV)
    target_link_options(dialix PRIVATE -Wl,-Bsymbolic)
else()
    dialix_plugin_module(dialix dialix_hidapi_real)
endif()

# libdialix_virtual.so: the same plug-in over the virtual panel's shared library
# (tools/virtualpanel), which the reference host and the tests share with it.
dialix_plugin_module(dialix_virtual dialix_virtualpanel_shared)
