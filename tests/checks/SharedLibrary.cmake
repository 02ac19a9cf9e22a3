# What the shared library shows and does at load: it exports its classes and nothing of the platform layer, and
# runs no code of its own when it is mapped. -DLIBRARY= the file
execute_process(COMMAND nm --dynamic --defined-only --demangle ${LIBRARY} OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
if(NOT symbols MATCHES "StringUtils::MatchSpec")
  message(FATAL_ERROR "MatchSpec is not exported")
endif()
string(REGEX MATCHALL "[^\n]*(CreateFileA|GetLastError|PathParts|TextSearch|FailureMarkers)[^\n]*" leaked "${symbols}")
if(leaked)
  message(FATAL_ERROR "exported though internal:\n${leaked}")
endif()

# One entry of 8 bytes belongs to the compiler's own start-up code.
execute_process(COMMAND readelf --section-headers --wide ${LIBRARY} OUTPUT_VARIABLE sections COMMAND_ERROR_IS_FATAL ANY)
if(NOT sections MATCHES "\\.init_array +INIT_ARRAY +[0-9a-f]+ [0-9a-f]+ 0*8 ")
  message(FATAL_ERROR "code runs at load:\n${sections}")
endif()
