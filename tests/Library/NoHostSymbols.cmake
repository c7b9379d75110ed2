# Fails when a framework library needs a host function (spark*) or an OpenGL
# call (gl*) at link time: below the host binding everything reaches the host
# through ZelHost. Run as: cmake -DNM=nm -DLIBRARIES="a;b" -P NoHostSymbols.cmake
foreach(library ${LIBRARIES})
  execute_process(COMMAND ${NM} --undefined-only ${library}
    OUTPUT_VARIABLE symbols RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "nm failed on ${library}")
  endif()
  string(REGEX MATCHALL "U (spark|gl)[A-Za-z0-9_]*" needed "${symbols}")
  if(needed)
    message(FATAL_ERROR "${library} needs host symbols: ${needed}")
  endif()
endforeach()
message(STATUS "no host symbols in ${LIBRARIES}")
