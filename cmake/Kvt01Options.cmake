# What every target of this project is compiled with.
if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

if(KVT01_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

if(KVT01_LIBFUZZER)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

function(kvt01_own_code target)
  target_compile_features(${target} PRIVATE cxx_std_20)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
  if(WIN32) # whose headers take short names such as byte for themselves, so only locals can be kept apart
    target_compile_options(${target} PRIVATE -Wno-shadow -Wshadow=local)
  endif()
  # The same bits from sums of products on every processor, and bytes of 128 and more below 0.
  target_compile_options(${target} PRIVATE -ffp-contract=off -fsigned-char)
  # g++ 12 sees overlapping copies in std::string's + where there are none.
  target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
  set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
endfunction()
