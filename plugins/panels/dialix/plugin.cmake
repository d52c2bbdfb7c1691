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
