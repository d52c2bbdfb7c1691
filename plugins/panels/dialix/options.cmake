# The options page of a panel, its option keys, the store of a panel's
# assignments and page in a settings object, the function table and the
# translations (compiled with lrelease and embedded as a resource).

set(DIALIX_OPTIONS_DIR ${CMAKE_CURRENT_SOURCE_DIR}/source)
set(DIALIX_TS_FILES
    ${CMAKE_SOURCE_DIR}/translations/dialix_en.ts
    ${CMAKE_SOURCE_DIR}/translations/dialix_de.ts)

# .ts -> .qm at build time; the .qm files are packed into one resource.
qt5_add_translation(DIALIX_QM_FILES ${DIALIX_TS_FILES})
set(DIALIX_TRANSLATIONS_QRC ${CMAKE_CURRENT_BINARY_DIR}/dialix_translations.qrc)
set(_dialix_qrc "<RCC>\n  <qresource prefix=\"/dialix/translations\">\n")
foreach(qm ${DIALIX_QM_FILES})
    get_filename_component(_qm_name ${qm} NAME)
    string(APPEND _dialix_qrc "    <file alias=\"${_qm_name}\">${qm}</file>\n")
endforeach()
string(APPEND _dialix_qrc "  </qresource>\n</RCC>\n")
file(GENERATE OUTPUT ${DIALIX_TRANSLATIONS_QRC} CONTENT "${_dialix_qrc}")
set(DIALIX_TRANSLATIONS_CPP ${CMAKE_CURRENT_BINARY_DIR}/qrc_dialix_translations.cpp)
add_custom_command(OUTPUT ${DIALIX_TRANSLATIONS_CPP}
    COMMAND Qt5::rcc -name dialix_translations ${DIALIX_TRANSLATIONS_QRC} -o ${DIALIX_TRANSLATIONS_CPP}
    DEPENDS ${DIALIX_QM_FILES} ${DIALIX_TRANSLATIONS_QRC}
    COMMENT "Embedding the translations"
    VERBATIM)
set_source_files_properties(${DIALIX_TRANSLATIONS_CPP} PROPERTIES
    GENERATED TRUE SKIP_AUTOMOC ON SKIP_AUTOUIC ON SKIP_AUTORCC ON)

add_library(dialix_options STATIC
    ${DIALIX_OPTIONS_DIR}/dialixoptions.h
    ${DIALIX_OPTIONS_DIR}/dialixoptions.cpp
    ${DIALIX_OPTIONS_DIR}/dialixoptions.ui
    ${DIALIX_OPTIONS_DIR}/optionkeys.h
    ${DIALIX_OPTIONS_DIR}/optionkeys.cpp
    ${DIALIX_OPTIONS_DIR}/optionsfile.h
    ${DIALIX_OPTIONS_DIR}/optionsfile.cpp
    ${DIALIX_OPTIONS_DIR}/assignmentstore.h
    ${DIALIX_OPTIONS_DIR}/assignmentstore.cpp
    ${DIALIX_OPTIONS_DIR}/functiontable.h
    ${DIALIX_OPTIONS_DIR}/functiontable.cpp
    ${DIALIX_OPTIONS_DIR}/dialixtranslation.h
    ${DIALIX_OPTIONS_DIR}/dialixtranslation.cpp
    ${DIALIX_TRANSLATIONS_CPP})
# The form (ui_dialixoptions.h) is private to the page; tests reach it through a
# test-only friend.
target_include_directories(dialix_options PUBLIC
    ${CMAKE_CURRENT_BINARY_DIR}/dialix_options_autogen/include)
target_link_libraries(dialix_options PUBLIC Qt5::Widgets Qt5::SerialPort dialix_interfaces)
dialix_warnings(dialix_options)

# Refresh the .ts files from the sources: cmake --build <dir> --target dialix_lupdate
# Every source of the plug-in with a visible text is listed: the options page and
# its tables, the controller ("RX 1", the PTT port message) and the root (tab titles).
add_custom_target(dialix_lupdate
    COMMAND Qt5::lupdate -no-obsolete -locations none
        ${DIALIX_OPTIONS_DIR}/dialixoptions.ui
        ${DIALIX_OPTIONS_DIR}/functiontable.h
        ${DIALIX_OPTIONS_DIR}/dialixoptions.cpp
        ${DIALIX_OPTIONS_DIR}/optionkeys.cpp
    ${DIALIX_OPTIONS_DIR}/assignmentstore.h
    ${DIALIX_OPTIONS_DIR}/assignmentstore.cpp
        ${DIALIX_OPTIONS_DIR}/dialixcontrol.h
        ${DIALIX_OPTIONS_DIR}/dialixcontrol.cpp
        ${DIALIX_OPTIONS_DIR}/controldialix.h
        ${DIALIX_OPTIONS_DIR}/controldialix.cpp
        -ts ${DIALIX_TS_FILES}
    WORKING_DIRECTORY ${CMAKE_SOURCE_DIR}
    COMMENT "Updating the translation sources"
    VERBATIM)
