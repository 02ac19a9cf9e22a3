# Installs the library into a folder of its own, builds the outside host against it and runs it.
# -DBUILD= the library's build folder, -DSOURCE= the host's source, -DWORK= a folder for this check, -DCOMPILER=
function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    string(JOIN " " command ${ARGV})
    message(FATAL_ERROR "${command}\n${output}")
  endif()
endfunction()

file(REMOVE_RECURSE ${WORK})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/installed)
run(${CMAKE_COMMAND} -S ${SOURCE} -B ${WORK}/build -DCMAKE_PREFIX_PATH=${WORK}/installed -DCMAKE_CXX_COMPILER=${COMPILER})
run(${CMAKE_COMMAND} --build ${WORK}/build)
run(${WORK}/build/host)
