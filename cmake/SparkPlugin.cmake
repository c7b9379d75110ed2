# add_spark_plugin(NAME SOURCES... LINK libs... EXPORTS file)
# Builds a host plug-in: a shared module named exactly "<NAME>.spark" (no
# "lib" prefix) that exports only the names listed in the EXPORTS file and
# links no host library: host and OpenGL functions resolve from the host
# process when it is loaded.
function(add_spark_plugin name)
  cmake_parse_arguments(P "" "EXPORTS" "SOURCES;LINK" ${ARGN})
  add_library(${name} MODULE ${P_SOURCES})
  set_target_properties(${name} PROPERTIES PREFIX "" SUFFIX ".spark" OUTPUT_NAME ${name}
    LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR})
  target_link_libraries(${name} PRIVATE ${P_LINK})
  set(vs ${CMAKE_CURRENT_BINARY_DIR}/${name}.version)
  file(STRINGS ${P_EXPORTS} names REGEX "^[A-Za-z_]")
  set(body "{\n  global:\n")
  foreach(n ${names})
    string(APPEND body "    ${n};\n")
  endforeach()
  string(APPEND body "  local: *;\n};\n")
  file(WRITE ${vs} "${body}")
  target_link_options(${name} PRIVATE "-Wl,--version-script=${vs}" "-Wl,--exclude-libs,ALL")
  set_property(TARGET ${name} APPEND PROPERTY LINK_DEPENDS ${P_EXPORTS})
endfunction()
