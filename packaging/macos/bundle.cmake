# Makes the program a bundle. Included where the target is made, since CMake lets only that folder add to it.

# Drawn at build time, so that there is one drawing of the icon.
add_executable(make_icns "${PROJECT_SOURCE_DIR}/packaging/macos/make_icns.cpp")
target_link_libraries(make_icns PRIVATE tarnwick_options Qt6::Gui Qt6::Svg)
add_dependencies(tarnwick make_icns)
set(resources "$<TARGET_BUNDLE_CONTENT_DIR:tarnwick>/Resources")
add_custom_command(TARGET tarnwick POST_BUILD
  COMMAND "${CMAKE_COMMAND}" -E make_directory "${resources}"
  COMMAND make_icns "${PROJECT_SOURCE_DIR}/packaging/icon.svg" "${resources}/Tarnwick.icns"
  VERBATIM)
set_target_properties(tarnwick PROPERTIES
  MACOSX_BUNDLE ON
  MACOSX_BUNDLE_INFO_PLIST "${PROJECT_SOURCE_DIR}/packaging/macos/Info.plist.in"
  OUTPUT_NAME Tarnwick)
