# The catalogues of translations/ become a part of the program: its languages, and this system's words for what the
# texts in the code call by Apple's names.

file(GLOB ts_files CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/translations/tarnwick_*.ts")
if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
  file(GLOB word_files CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/translations/linux_*.ts")
  list(APPEND ts_files ${word_files})
endif()
if(NOT ts_files)
  return()
endif()
get_target_property(qmake Qt6::qmake IMPORTED_LOCATION)
execute_process(COMMAND "${qmake}" -query QT_INSTALL_BINS OUTPUT_VARIABLE qt_tools OUTPUT_STRIP_TRAILING_WHITESPACE)
find_program(TARNWICK_LRELEASE lrelease HINTS "${qt_tools}" REQUIRED)

set(qm_files)
foreach(ts IN LISTS ts_files)
  get_filename_component(name "${ts}" NAME_WLE)
  set(qm "${CMAKE_CURRENT_BINARY_DIR}/${name}.qm")
  add_custom_command(OUTPUT "${qm}" COMMAND "${TARNWICK_LRELEASE}" -silent "${ts}" -qm "${qm}" DEPENDS "${ts}" VERBATIM)
  list(APPEND qm_files "${qm}")
endforeach()
qt_add_resources(tarnwick_ui translations PREFIX /translations BASE "${CMAKE_CURRENT_BINARY_DIR}" FILES ${qm_files})
