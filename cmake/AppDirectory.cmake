# Installation directories: a program with its modules, plugins.list and other files beside it. The
# build tree holds the product's complete directory; an installation prefix gets the same. Tests,
# benchmarks and the sample maker have smaller ones.
set(ASSAYER_APP_DIR ${CMAKE_BINARY_DIR}/app)
set(ASSAYER_INSTALL_DIR lib/assayer CACHE STRING "The installation directory below the prefix")

# The names of the factories in the order of the check, read from the header that defines them.
file(STRINGS core/media/PluginFactories.h ASSAYER_FACTORIES REGEX "_FACTORY\\[\\] = ")
list(TRANSFORM ASSAYER_FACTORIES REPLACE ".*\"(.*)\".*" "\\1")

# Puts a target into the product's installation directory. The target finds our own libraries in the
# same directory.
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

# assayer_add_module(NAME FACTORY source...) adds a plugin module of our own interface. FACTORY lists
# it, in the order of these calls. NONE: no factory lists it, because the program knows its name.
function(assayer_add_module name factory)
  add_library(${name} MODULE ${ARGN})
  set_target_properties(${name} PROPERTIES
    PREFIX "" CXX_VISIBILITY_PRESET hidden ASSAYER_FACTORY ${factory})
  target_link_libraries(${name} PRIVATE assayer_settings assayer_core assayer_mediacore)
  assayer_add_to_app(${name})
  set_property(GLOBAL APPEND PROPERTY ASSAYER_MODULES ${name})
endfunction()

# assayer_write_plugin_list(DIRECTORY module...) writes a plugins.list of the modules.
function(assayer_write_plugin_list directory)
  foreach(module ${ARGN})
    get_target_property(factory ${module} ASSAYER_FACTORY)
    list(APPEND plugins_of_${factory} ${module})
  endforeach()
  set(text "# The plugins of each factory, in the order in which they are checked.\n")
  foreach(factory ${ASSAYER_FACTORIES})
    list(JOIN plugins_of_${factory} ", " joined)
    string(STRIP "${factory}: ${joined}" line)
    string(APPEND text "${line}\n")
  endforeach()
  file(CONFIGURE OUTPUT ${directory}/plugins.list CONTENT "${text}" @ONLY)
endfunction()

# assayer_make_app_for(TARGET DIRECTORY module...) makes an installation directory for a program that
# loads these modules; it holds links to them.
function(assayer_make_app_for target directory)
  set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${directory})
  file(MAKE_DIRECTORY ${directory})
  foreach(module ${ARGN})
    add_dependencies(${target} ${module})
    file(CREATE_LINK ${ASSAYER_APP_DIR}/${module}.so ${directory}/${module}.so SYMBOLIC)
  endforeach()
  assayer_write_plugin_list(${directory} ${ARGN})
endfunction()

# Call it after all modules have been added.
function(assayer_finish_app)
  get_property(modules GLOBAL PROPERTY ASSAYER_MODULES)
  assayer_write_plugin_list(${ASSAYER_APP_DIR} ${modules})
  install(FILES ${ASSAYER_APP_DIR}/plugins.list DESTINATION ${ASSAYER_INSTALL_DIR})
endfunction()
