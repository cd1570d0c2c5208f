# Builds the plug-in's resource table from resources/resources.txt plus the
# pictures generated at build time (cmake/Icons.cmake), as one C++ source
# compiled into the module. Sets LB_RESOURCE_SOURCES.
#
# Manifest lines: TYPE NAME-or-ID LANGUAGE FILE (FILE relative to resources/).
# Generated entries: "TYPE|NAME|LANG|ABSOLUTE_FILE" in LB_GENERATED_RESOURCES.

set(LB_GENERATED_RESOURCES "")
include(${CMAKE_SOURCE_DIR}/cmake/Icons.cmake OPTIONAL)

set(_lb_res_manifest ${CMAKE_SOURCE_DIR}/resources/resources.txt)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${_lb_res_manifest})
file(STRINGS ${_lb_res_manifest} _lb_res_lines)

set(_lb_res_entries "")
set(_lb_res_deps ${_lb_res_manifest})
foreach(_line IN LISTS _lb_res_lines)
  string(STRIP "${_line}" _line)
  if(_line STREQUAL "" OR _line MATCHES "^#")
    continue()
  endif()
  string(REGEX REPLACE "[ \t]+" ";" _parts "${_line}")
  list(LENGTH _parts _n)
  if(NOT _n EQUAL 4)
    message(FATAL_ERROR "resources.txt: expected TYPE NAME LANGUAGE FILE, got: ${_line}")
  endif()
  list(GET _parts 0 _type)
  list(GET _parts 1 _name)
  list(GET _parts 2 _lang)
  list(GET _parts 3 _file)
  set(_file ${CMAKE_SOURCE_DIR}/resources/${_file})
  list(APPEND _lb_res_entries "${_type}|${_name}|${_lang}|${_file}")
  list(APPEND _lb_res_deps ${_file})
endforeach()

foreach(_entry IN LISTS LB_GENERATED_RESOURCES)
  string(REPLACE "|" ";" _parts "${_entry}")
  list(GET _parts 3 _file)
  list(APPEND _lb_res_entries "${_entry}")
  list(APPEND _lb_res_deps ${_file})
endforeach()

set(_lb_res_dir ${CMAKE_BINARY_DIR}/generated)
set(_lb_res_list ${_lb_res_dir}/resource-entries.txt)
set(_lb_res_cpp ${_lb_res_dir}/LBResourceTable.cpp)
string(REPLACE ";" "\n" _lb_res_text "${_lb_res_entries}")
file(MAKE_DIRECTORY ${_lb_res_dir})
file(CONFIGURE OUTPUT ${_lb_res_list} CONTENT "${_lb_res_text}\n")

add_custom_command(
  OUTPUT ${_lb_res_cpp}
  COMMAND ${CMAKE_COMMAND} -DLIST=${_lb_res_list} -DOUT=${_lb_res_cpp}
          -P ${CMAKE_SOURCE_DIR}/cmake/EmbedResources.cmake
  DEPENDS ${_lb_res_deps} ${_lb_res_list} ${CMAKE_SOURCE_DIR}/cmake/EmbedResources.cmake
  COMMENT "Embedding plug-in resources"
  VERBATIM)
set(LB_RESOURCE_SOURCES ${_lb_res_cpp})

# The generator of the pictures runs before the table is built.
foreach(_tgt IN LISTS LB_GENERATED_RESOURCES_TARGET LB_ICONS_TARGET)
  if(_tgt)
    # Deferred calls read variables when they run: bake the name in now.
    cmake_language(EVAL CODE "cmake_language(DEFER CALL add_dependencies lb_plugin_objs ${_tgt})")
  endif()
endforeach()
