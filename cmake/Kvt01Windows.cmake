# The library on its original platform: the system's own operations, from its import libraries.
set(kvt01_platform_libraries version)
target_link_libraries(kvt01 PRIVATE ${kvt01_platform_libraries})
target_link_options(kvt01 PRIVATE LINKER:--no-undefined LINKER:-O1)
set_target_properties(kvt01 PROPERTIES PREFIX "") # kvt01.dll; the import library stays libkvt01.dll.a
