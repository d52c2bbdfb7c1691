# The panel controller (dialixcontrol.cpp: construction, host binding, routing,
# LEDs, PTT; dialixfunctions.cpp: the key and dial functions;
# dialixassignments.cpp: the function menus and the persistence of
# assignments) and the VFO coalescing timer.
add_library(dialix_control STATIC
    ${CMAKE_CURRENT_LIST_DIR}/source/dialixcontrol.h
    ${CMAKE_CURRENT_LIST_DIR}/source/dialixcontrol.cpp
    ${CMAKE_CURRENT_LIST_DIR}/source/dialixfunctions.cpp
    ${CMAKE_CURRENT_LIST_DIR}/source/dialixassignments.cpp
    ${CMAKE_CURRENT_LIST_DIR}/source/valuetimeout.h
    ${CMAKE_CURRENT_LIST_DIR}/source/valuetimeout.cpp)
target_link_libraries(dialix_control PUBLIC
    dialix_device dialix_options dialix_command dialix_serial dialix_interfaces Qt5::Widgets)
dialix_warnings(dialix_control)
