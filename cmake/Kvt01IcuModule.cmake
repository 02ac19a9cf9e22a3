# The module that is linked with ICU. It lies beside the library, which loads it at the first question that needs it.
find_package(ICU REQUIRED COMPONENTS uc i18n)

add_library(kvt01_icu MODULE platform/posix/icu/IcuModule.cpp)
target_include_directories(kvt01_icu PRIVATE . include)
target_link_libraries(kvt01_icu PRIVATE ICU::i18n ICU::uc)
target_link_options(kvt01_icu PRIVATE LINKER:--no-undefined LINKER:-z,relro,-z,now)
set_target_properties(kvt01_icu PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
kvt01_own_code(kvt01_icu)
install(TARGETS kvt01_icu LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})

# Whoever builds the library gets the module as well: in the build tree beside the library, and beside the test
# program, which holds the library's objects itself.
add_dependencies(kvt01 kvt01_icu)
if(KVT01_TESTS)
  add_custom_command(TARGET kvt01_icu POST_BUILD COMMAND ${CMAKE_COMMAND} -E create_symlink
                     $<TARGET_FILE:kvt01_icu> ${CMAKE_CURRENT_BINARY_DIR}/tests/$<TARGET_FILE_NAME:kvt01_icu>)
endif()
