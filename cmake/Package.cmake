# What an installation holds beside its application directory, and the Debian package of all of it.
include(GNUInstallDirs)
install(FILES doc/Assayer.1 doc/assay.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
# The same layout as in the sources keeps the links between the documents valid.
install(FILES README.md ARCHITECTURE.md DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/assayer)
install(FILES doc/protocol.md doc/report.md doc/parent.py DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/assayer/doc)

# The command is on the PATH; what it runs stays in the installation directory.
set(link ${PROJECT_BINARY_DIR}/links/assay)
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/links)
file(CREATE_LINK ../${ASSAYER_INSTALL_DIR}/assay ${link} SYMBOLIC)
install(FILES ${link} DESTINATION ${CMAKE_INSTALL_BINDIR})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "Assayer developers <assayer@tarnex.invalid>")
set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_SOURCE_DIR}/cmake/PackageDependencies.cmake)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION video)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Loads plugin modules and tests codecs in its own process, names each one before it touches it, and
tells its parent, by records and an exit code, which ones can be trusted.")
# No link shows these dependencies: graphics drivers, and elements of the optional media framework.
# They are the packages that scripts/setup.sh installs to run the program from its sources.
file(STRINGS scripts/packages.list recommends REGEX "^run ")
list(TRANSFORM recommends REPLACE "^run " "")
list(JOIN recommends ", " CPACK_DEBIAN_PACKAGE_RECOMMENDS)
get_property(files GLOBAL PROPERTY ASSAYER_APP_FILES)
file(GENERATE OUTPUT ${PROJECT_BINARY_DIR}/app-files.txt CONTENT "$<JOIN:${files},\n>\n")
set(CPACK_ASSAYER_APP_FILES ${PROJECT_BINARY_DIR}/app-files.txt)
set(CPACK_ASSAYER_APP_DIR ${ASSAYER_APP_DIR})
include(CPack)
