# The panel's pictures: a generator program (resources/icons/IconGen.cpp)
# draws the button pictures, the checkbox icons and the panel logos with
# cairo and writes them as BMP and PNG files into
# ${CMAKE_BINARY_DIR}/generated/resources at build time. Sets
# LB_GENERATED_RESOURCES ("TYPE|NAME|LANG|ABSOLUTE_FILE" entries) and
# LB_ICONS_TARGET for cmake/Resources.cmake, which embeds them.

# The window layer draws its text with cairo (and hands fontconfig's caches
# back at exit).
pkg_check_modules(LB_FONTCONFIG REQUIRED IMPORTED_TARGET fontconfig)
target_link_libraries(lbwin PRIVATE PkgConfig::CAIRO PkgConfig::LB_FONTCONFIG)

add_executable(lb_icongen ${CMAKE_SOURCE_DIR}/resources/icons/IconGen.cpp)
target_link_libraries(lb_icongen PRIVATE PkgConfig::CAIRO)

set(_lb_icon_dir ${CMAKE_BINARY_DIR}/generated/resources)

# Button pictures, in command-table order, then the checkbox icons and the
# spare picture.
set(LB_BUTTON_PICTURES
  IMG_SET_OF_PATHS IMG_AXES_AND_NODES IMG_MOVE_CORNER_NODE IMG_KNOTS_TO_VERTICES
  IMG_VERTICES_TO_KNOTS IMG_COLOR_SHIFT IMG_COLOR_REFLECT IMG_COLOR_ROTATE IMG_COLOR_CLONE
  IMG_SPLIT IMG_ONE_CELL_MESH IMG_BMG_CREATE IMG_BMG_TO_MESH IMG_HANDLES_SMOOTH
  IMG_HANDLES_1_3 IMG_HANDLES_0 IMG_ALIGN_HOR IMG_ALIGN_VERT IMG_COLOR_SPREAD
  IMG_SEL_REGION IMG_SEL_PERIM IMG_SEW_MESH_MOVE IMG_SEW_MESH_ADD IMG_COLOR_PATTERN
  IMG_SEL_CROSS IMG_SEL_SHIFT IMG_ALIGN_PATH IMG_COLOR_CAPTURE IMG_HANDLES_90 IMG_SEL
  IMG_SEW_DOCKED IMG_DENSITY_INC IMG_DENSITY_DEC IMG_SEW_PATH IMG_SEW_0 IMG_UV_RESET
  IMG_DIR_ROTATE)
set(LB_OTHER_PICTURES IMG_CB_COLOR IMG_CB_OPACITY IMG_000)
set(LB_LOGOS LBLOGOW LBLOGOW_AT_2X LBLOGOW_AT_3TO2X LBLOGOD LBLOGOD_AT_2X LBLOGOD_AT_3TO2X)

set(_lb_icon_outputs "")
set(LB_GENERATED_RESOURCES "")
foreach(_name IN LISTS LB_BUTTON_PICTURES LB_OTHER_PICTURES)
  list(APPEND _lb_icon_outputs ${_lb_icon_dir}/${_name}.bmp)
  list(APPEND LB_GENERATED_RESOURCES "BMPP|${_name}|1033|${_lb_icon_dir}/${_name}.bmp")
endforeach()
foreach(_name IN LISTS LB_LOGOS)
  list(APPEND _lb_icon_outputs ${_lb_icon_dir}/${_name}.png)
  list(APPEND LB_GENERATED_RESOURCES "PNGI|${_name}|1033|${_lb_icon_dir}/${_name}.png")
endforeach()

add_custom_command(
  OUTPUT ${_lb_icon_outputs}
  COMMAND ${CMAKE_COMMAND} -E make_directory ${_lb_icon_dir}
  COMMAND ${CMAKE_COMMAND} -E env ASAN_OPTIONS=detect_leaks=0 $<TARGET_FILE:lb_icongen>
          ${_lb_icon_dir}
  DEPENDS lb_icongen
  COMMENT "Drawing the panel pictures"
  VERBATIM)
add_custom_target(lb_icons DEPENDS ${_lb_icon_outputs})
set(LB_ICONS_TARGET lb_icons)
