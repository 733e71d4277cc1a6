# What an installation holds beside its application directory, and the Debian package of all of it.
include(GNUInstallDirs)
install(FILES doc/Assayer.1 doc/assay.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
# The same layout as in the sources keeps the links between the documents valid.
set(documents ${CMAKE_INSTALL_DATAROOTDIR}/doc/assayer)
install(FILES README.md ARCHITECTURE.md CHANGELOG.md CONTRIBUTING.md packaging/copyright DESTINATION ${documents})
install(FILES doc/application.md doc/exercise.md doc/figures.md doc/findings.md doc/fleet.md doc/modules.md
  doc/parent.py doc/protocol.md doc/report.md DESTINATION ${documents}/doc)
install(FILES fleet/alerts.yml DESTINATION ${documents}/fleet)
# For each user to enable; the package enables nothing.
install(FILES packaging/systemd/assayer-check.service packaging/systemd/assayer-check.timer
  DESTINATION lib/systemd/user)
# Debian's name and form of the changelog.
find_program(GZIP gzip REQUIRED)
set(changelog ${PROJECT_BINARY_DIR}/changelog.gz)
execute_process(
  COMMAND ${GZIP} -9nc ${PROJECT_SOURCE_DIR}/CHANGELOG.md OUTPUT_FILE ${changelog} COMMAND_ERROR_IS_FATAL ANY)
install(FILES ${changelog} DESTINATION ${documents})

# Where each shell looks for what completes a command of a package.
set(completion packaging/completion)
install(FILES ${completion}/assay.bash DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/bash-completion/completions RENAME assay)
install(FILES ${completion}/_assay DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/zsh/vendor-completions)
install(FILES ${completion}/assay.fish DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/fish/vendor_completions.d)

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
"Finds out which plugin modules and codecs of this machine work, in processes of its own, so that a
module that crashes or hangs harms nothing else. The command assay gives each one a verdict and writes
a report; the program Assayer does one run and tells any parent, by records and an exit code, which
ones can be trusted.")
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
