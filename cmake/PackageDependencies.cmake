# CPack reads this before it makes the package. CPack's own search would make all libraries hard
# dependencies, but those of the optional media framework are only recommended.
file(STRINGS ${CPACK_ASSAYER_APP_FILES} needed)
set(optional ${needed})
list(FILTER optional INCLUDE REGEX "/MediaFoundationCodecs\\.so$")
list(FILTER needed EXCLUDE REGEX "/MediaFoundationCodecs\\.so$")
list(TRANSFORM needed PREPEND -e)
list(TRANSFORM optional PREPEND -e)

# dpkg-shlibdeps insists on a source package's control file in its working directory.
set(work ${CPACK_PACKAGE_DIRECTORY}/shlibdeps)
file(WRITE ${work}/debian/control "")
execute_process(
  COMMAND dpkg-shlibdeps -O --ignore-missing-info -l${CPACK_ASSAYER_APP_DIR}
          -dDepends ${needed} -dRecommends ${optional}
  WORKING_DIRECTORY ${work}
  OUTPUT_VARIABLE found
  ERROR_VARIABLE problems)
if(NOT found MATCHES "shlibs:Depends=([^\n]+)")
  message(FATAL_ERROR "dpkg-shlibdeps finds no dependencies: ${problems}")
endif()
set(CPACK_DEBIAN_PACKAGE_DEPENDS "${CMAKE_MATCH_1}")
if(found MATCHES "shlibs:Recommends=([^\n]+)")
  string(APPEND CPACK_DEBIAN_PACKAGE_RECOMMENDS ", ${CMAKE_MATCH_1}")
endif()
