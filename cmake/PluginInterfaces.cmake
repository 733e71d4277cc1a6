# The headers of the plugin interfaces that others define, each as a target: assayer_clap and so on.
# assayer_find_interface(NAME HEADER PACKAGE [FOLDER...]) finds them; PACKAGE is Debian's, FOLDER is
# where it puts headers if compilers don't search there.
function(assayer_find_interface name header package)
  string(TOUPPER ${name}_INCLUDE_DIR folder)
  find_path(${folder} ${header} PATHS ${ARGN})
  if(NOT ${folder})
    message(FATAL_ERROR
      "Can't find ${header}. Install Debian's package ${package}, or set ${folder} to the folder that holds it.")
  endif()
  add_library(assayer_${name} INTERFACE)
  target_include_directories(assayer_${name} SYSTEM INTERFACE ${${folder}})
endfunction()

assayer_find_interface(frei0r frei0r.h frei0r-plugins-dev)
assayer_find_interface(ladspa ladspa.h ladspa-sdk)
assayer_find_interface(lv2 lv2/core/lv2.h lv2-dev)
assayer_find_interface(vamp vamp/vamp.h vamp-plugin-sdk)
assayer_find_interface(clap clap/entry.h dpf-source /usr/share/dpf/distrho/src)
assayer_find_interface(vst3 travesty/factory.h dpf-source /usr/share/dpf/distrho/src)
