# Installs the library into a folder of its own, builds the outside host against it and runs it.
# -DBUILD= the library's build folder, -DSOURCE= the host's source, -DWORK= a folder for this check, -DCOMPILER=
# -DTOOLCHAIN= and -DEMULATOR= where it is built for another platform, else empty
function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    string(JOIN " " command ${ARGV})
    message(FATAL_ERROR "${command}\n${output}")
  endif()
endfunction()

file(REMOVE_RECURSE ${WORK})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/installed)
if(TOOLCHAIN)
  set(ENV{WINEPATH} ${WORK}/installed/bin)
  set(compiler --toolchain ${TOOLCHAIN})
else()
  set(compiler -DCMAKE_CXX_COMPILER=${COMPILER})
endif()
run(${CMAKE_COMMAND} -G Ninja -S ${SOURCE} -B ${WORK}/build -DCMAKE_PREFIX_PATH=${WORK}/installed ${compiler})
run(${CMAKE_COMMAND} --build ${WORK}/build)
file(GLOB host ${WORK}/build/host ${WORK}/build/host.exe)
run(${EMULATOR} ${host})
