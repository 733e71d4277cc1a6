# The installation directory: program, modules, plugins.list and samples in one folder, complete in
# the build tree and the same under an installation prefix.
set(ASSAYER_APP_DIR ${CMAKE_BINARY_DIR}/app)
set(ASSAYER_INSTALL_DIR lib/assayer CACHE STRING "The installation directory below the prefix")

# Puts a target into the installation directory; what it needs of ours it finds beside itself.
function(assayer_add_to_app target)
  set_target_properties(${target} PROPERTIES
    RUNTIME_OUTPUT_DIRECTORY ${ASSAYER_APP_DIR}
    LIBRARY_OUTPUT_DIRECTORY ${ASSAYER_APP_DIR}
    BUILD_RPATH_USE_ORIGIN ON
    BUILD_WITH_INSTALL_RPATH ON
    INSTALL_RPATH "$ORIGIN")
  set_property(GLOBAL APPEND PROPERTY ASSAYER_APP_FILES $<TARGET_FILE:${target}>)
  install(TARGETS ${target}
    RUNTIME DESTINATION ${ASSAYER_INSTALL_DIR}
    LIBRARY DESTINATION ${ASSAYER_INSTALL_DIR})
endfunction()

# assayer_add_module(NAME FACTORY source...): a plugin module of our own interface. FACTORY is the
# factory that lists it, in the order of these calls, or NONE where the program knows it by name.
function(assayer_add_module name factory)
  add_library(${name} MODULE ${ARGN})
  set_target_properties(${name} PROPERTIES PREFIX "" CXX_VISIBILITY_PRESET hidden)
  target_link_libraries(${name} PRIVATE assayer_settings assayer_core assayer_mediacore)
  assayer_add_to_app(${name})
  if(NOT factory STREQUAL "NONE")
    set_property(GLOBAL APPEND PROPERTY ASSAYER_PLUGINS_${factory} ${name})
  endif()
endfunction()

function(assayer_write_plugin_list)
  set(text "# The plugins of each factory, in the order in which they are checked.\n")
  foreach(factory EffectFactory FilterFactory CodecFactory MuxerFactory ParserFactory AnalyzerFactory)
    get_property(names GLOBAL PROPERTY ASSAYER_PLUGINS_${factory})
    list(JOIN names ", " joined)
    string(STRIP "${factory}: ${joined}" line)
    string(APPEND text "${line}\n")
  endforeach()
  file(CONFIGURE OUTPUT ${ASSAYER_APP_DIR}/plugins.list CONTENT "${text}" @ONLY)
  install(FILES ${ASSAYER_APP_DIR}/plugins.list DESTINATION ${ASSAYER_INSTALL_DIR})
endfunction()
