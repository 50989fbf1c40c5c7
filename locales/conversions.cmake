# The installation's conversion objects, compiled from character maps as the list `conversions` says.
set(conversions_directory ${PROJECT_BINARY_DIR}/gls/cv9)
file(MAKE_DIRECTORY ${conversions_directory})
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
  ${CMAKE_CURRENT_SOURCE_DIR}/conversions)

set(conversion_objects)
# Sets a rule for the object of one direction; code sets by their names in the registry. Losses are not
# listed: of UTF-8 they are nearly all characters.
function(add_conversion from to)
  set(object ${conversions_directory}/${number_${from}}${number_${to}}.cvo)
  set(arguments --output=${object} ${near_${from}_${to}} ${charmap_${from}} ${charmap_${to}})
  add_custom_command(OUTPUT ${object}
    COMMAND ${CMAKE_COMMAND} -DCOMPILER=$<TARGET_FILE:mkcvo> "-DARGUMENTS=${arguments}"
            -P ${CMAKE_CURRENT_SOURCE_DIR}/compile.cmake
    DEPENDS mkcvo compile.cmake
    COMMENT "Compiling conversion object ${from} to ${to}" VERBATIM)
  set(conversion_objects ${conversion_objects} ${object} PARENT_SCOPE)
endfunction()

file(STRINGS conversions rows REGEX "^[a-z]")
foreach(row IN LISTS rows)
  separate_arguments(row UNIX_COMMAND "${row}")
  list(POP_FRONT row kind name)
  if(kind STREQUAL "near")
    list(POP_FRONT row other)
    list(TRANSFORM row PREPEND --near=)
    set(near_${name}_${other} ${row})
    continue()
  elseif(kind STREQUAL "code_set")
    list(POP_FRONT row number_${name} charmap_${name})
    set(other utf8)
  else()
    list(POP_FRONT row other)
  endif()
  if(NOT name STREQUAL other)
    add_conversion(${name} ${other})
    add_conversion(${other} ${name})
  endif()
endforeach()

add_custom_target(shipped_conversions ALL DEPENDS ${conversion_objects})
install(FILES ${conversion_objects} DESTINATION gls/cv9)
