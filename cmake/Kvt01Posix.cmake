# The library's platform where it has one of its own: platform/posix and a module that knows ICU.

# Calls from one of the library's operations to another are its own affair: nobody may replace the callee.
target_compile_options(kvt01_objects PRIVATE -fno-semantic-interposition)
# Code and constants in one piece are mapped at once, which takes a tenth off the time to load.
target_link_options(kvt01 PRIVATE LINKER:--no-undefined LINKER:-O1 LINKER:-z,relro,-z,now LINKER:-z,noseparate-code
                                  LINKER:-Bsymbolic-functions
                                  LINKER:--version-script=${CMAKE_CURRENT_SOURCE_DIR}/cmake/exports.map)

include(Kvt01IcuModule)
