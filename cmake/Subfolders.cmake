# assayer_add_folder(FOLDER TARGET) adds a folder whose targets aren't part of the product. TARGET
# builds all of them.
function(assayer_get_targets folder result)
  get_property(targets DIRECTORY ${folder} PROPERTY BUILDSYSTEM_TARGETS)
  get_property(below DIRECTORY ${folder} PROPERTY SUBDIRECTORIES)
  foreach(subfolder ${below})
    assayer_get_targets(${subfolder} more)
    list(APPEND targets ${more})
  endforeach()
  set(${result} ${targets} PARENT_SCOPE)
endfunction()

function(assayer_add_folder folder target)
  add_subdirectory(${folder} EXCLUDE_FROM_ALL)
  assayer_get_targets(${folder} targets)
  add_custom_target(${target} DEPENDS ${targets})
endfunction()
