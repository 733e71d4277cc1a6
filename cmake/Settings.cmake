# What every target of ours is compiled with: link assayer_settings privately.
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()

add_library(assayer_settings INTERFACE)
target_compile_features(assayer_settings INTERFACE cxx_std_20)
target_compile_options(assayer_settings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual -Wundef)
# Texts of failures tell where they come from: by paths that mean something on other machines too.
target_compile_options(assayer_settings INTERFACE -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=)
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  target_compile_options(assayer_settings INTERFACE -Wthread-safety)
endif()
if(ASSAYER_WERROR)
  target_compile_options(assayer_settings INTERFACE -Werror)
endif()

# Directory-wide, not on the settings target: code compiled without them makes the reports unusable.
if(ASSAYER_SANITIZE)
  add_compile_options(-fsanitize=${ASSAYER_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${ASSAYER_SANITIZE})
endif()
if(ASSAYER_SANITIZE MATCHES "thread")
  # It doesn't know fences. Where Boost.Asio uses them, locks order the memory as well.
  add_compile_definitions(BOOST_ASIO_DISABLE_FENCED_BLOCK)
endif()
if(ASSAYER_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)  # the targets are steered by what they cover
endif()
