# The panel device: HID protocol, reader thread and the signals of its events.
# It is compiled against hidapi's header only; whoever links it picks the functions: the real
# libhidapi-hidraw (dialix_hidapi_real) for the plug-in, or the virtual panel
# (dialix_virtualpanel) for tests, benchmarks and the demo host.
add_library(dialix_device STATIC
    ${CMAKE_CURRENT_LIST_DIR}/source/panelprotocol.h
    ${CMAKE_CURRENT_LIST_DIR}/source/dialix.h
    ${CMAKE_CURRENT_LIST_DIR}/source/dialix.cpp)
target_link_libraries(dialix_device PUBLIC Qt5::Core dialix_hidapi_headers PRIVATE dialix_interfaces)
# The hid_* functions come from whatever the program or plug-in links as its
# hidapi (DIALIX_HIDAPI_PROVIDER on that target). Windows' linker resolves an
# archive's symbols only from what follows it on the command line: naming the
# provider here puts it after this library.
target_link_libraries(dialix_device INTERFACE
    $<GENEX_EVAL:$<TARGET_PROPERTY:DIALIX_HIDAPI_PROVIDER>>)
dialix_warnings(dialix_device)
