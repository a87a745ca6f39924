# What Debian expects of a package besides the program: its manual page and its changelog, and a version that tells the
# release it was built on, so that the package of the next release of the distribution is an upgrade.

cmake_host_system_information(RESULT system QUERY DISTRIB_INFO)
if(system_VERSION_ID)
  set(built_on "${system_ID}${system_VERSION_ID}")
else()
  set(built_on "${system_ID}${system_VERSION_CODENAME}") # a rolling release has no number
endif()
set(TARNWICK_DEB_VERSION "${PROJECT_VERSION}~${built_on}")

file(STRINGS "${PROJECT_SOURCE_DIR}/CHANGELOG.md" releases REGEX "^## ${PROJECT_VERSION} \\(")
string(REGEX MATCH "[0-9]+-[0-9]+-[0-9]+" RELEASE_DATE "${releases}")

find_program(TARNWICK_GZIP gzip REQUIRED)
mark_as_advanced(TARNWICK_GZIP)
# Installs the file made from `template` as `name`.gz in `folder`, the same bytes each time.
function(tarnwick_install_compressed template name folder)
  set(made "${CMAKE_CURRENT_BINARY_DIR}/${name}")
  configure_file("linux/${template}" "${made}" @ONLY)
  execute_process(COMMAND "${TARNWICK_GZIP}" -9nkf "${made}" COMMAND_ERROR_IS_FATAL ANY)
  install(FILES "${made}.gz" DESTINATION "${folder}")
endfunction()
tarnwick_install_compressed(tarnwick.1.in tarnwick.1 "${CMAKE_INSTALL_MANDIR}/man1")
tarnwick_install_compressed(changelog.in changelog "${CMAKE_INSTALL_DATADIR}/doc/tarnwick")
install(FILES "${PROJECT_SOURCE_DIR}/CHANGELOG.md" DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/tarnwick")
install(FILES linux/lintian-overrides DESTINATION "${CMAKE_INSTALL_DATADIR}/lintian/overrides" RENAME tarnwick)
