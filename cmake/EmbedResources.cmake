# cmake -DLIST=entries.txt -DOUT=table.cpp -P EmbedResources.cmake
# Writes the module's resource table: one byte array per resource and the
# exported accessor LBGetResourceTable.
file(STRINGS ${LIST} _entries)
set(_arrays "")
set(_rows "")
set(_i 0)
foreach(_entry IN LISTS _entries)
  if(_entry STREQUAL "")
    continue()
  endif()
  string(REPLACE "|" ";" _parts "${_entry}")
  list(GET _parts 0 _type)
  list(GET _parts 1 _name)
  list(GET _parts 2 _lang)
  list(GET _parts 3 _file)
  string(LENGTH "${_type}" _tl)
  if(_tl GREATER 4 OR _tl LESS 1)
    message(FATAL_ERROR "resource type '${_type}' is not a four-character code")
  endif()
  while(_tl LESS 4)
    string(APPEND _type " ")
    math(EXPR _tl "${_tl} + 1")
  endwhile()
  file(READ ${_file} _hex HEX)
  string(LENGTH "${_hex}" _hl)
  math(EXPR _size "${_hl} / 2")
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," _bytes "${_hex}")
  # Keep the source lines short.
  string(REGEX REPLACE "((0x..,){24})" "\\1\n  " _bytes "${_bytes}")
  if(_size EQUAL 0)
    set(_bytes "0")
  endif()
  string(APPEND _arrays "static const unsigned char kRes${_i}[] = {\n  ${_bytes}};\n")
  if(_name MATCHES "^[0-9]+$")
    set(_id ${_name})
    set(_nm "")
  else()
    set(_id 0)
    set(_nm "${_name}")
  endif()
  string(APPEND _rows "    {AIFourCC(\"${_type}\"), ${_id}, \"${_nm}\", ${_lang}, kRes${_i}, ${_size}u},\n")
  math(EXPR _i "${_i} + 1")
endforeach()

if(_i EQUAL 0)
  set(_rows "    {0, 0, \"\", 0, nullptr, 0u},\n")
endif()

set(_text "// Generated from resources/resources.txt: do not edit.
#include \"LBModule.h\"

namespace {
${_arrays}
const LBResourceEntry kEntries[] = {
${_rows}};
const LBResourceTable kTable = {${_i}u, kEntries};
}  // namespace

extern \"C\" __attribute__((visibility(\"default\"))) const LBResourceTable* LBGetResourceTable() {
  return &kTable;
}
")
file(WRITE ${OUT}.tmp "${_text}")
file(COPY_FILE ${OUT}.tmp ${OUT} ONLY_IF_DIFFERENT)
file(REMOVE ${OUT}.tmp)
