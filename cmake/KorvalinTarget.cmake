# Warnings, language level and sanitizers live on one target that every other one links.
find_program(CCACHE ccache)
if(CCACHE)
  # Without both the cache takes no source that is compiled with a precompiled header, which is every one.
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros ${CCACHE})
  add_compile_options($<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>)
endif()

add_library(korvalin_options INTERFACE)
target_compile_features(korvalin_options INTERFACE cxx_std_20)
target_include_directories(korvalin_options INTERFACE ${PROJECT_SOURCE_DIR}/src)
target_compile_options(korvalin_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # GCC 12 takes the move of a short std::string for an overlapping or overlong copy (its bug 105651).
  target_compile_options(korvalin_options INTERFACE -Wno-restrict -Wno-array-bounds
                                                   -Wno-stringop-overflow)
endif()
if(KORVALIN_WERROR)
  target_compile_options(korvalin_options INTERFACE -Werror)
endif()
if(KORVALIN_SANITIZE)
  target_compile_options(korvalin_options INTERFACE -fsanitize=${KORVALIN_SANITIZE} -fno-omit-frame-pointer
                                                   -fno-sanitize-recover=undefined)
  target_link_options(korvalin_options INTERFACE -fsanitize=${KORVALIN_SANITIZE})
endif()

# korvalin_floor(NAME file...): the sources of one folder of the core, compiled once, collected by korvalin_core.
function(korvalin_floor name)
  add_library(korvalin_${name} OBJECT ${ARGN})
  target_link_libraries(korvalin_${name} PUBLIC korvalin_options fmt::fmt)
  if(TARGET korvalin_base AND NOT name STREQUAL "base")
    target_precompile_headers(korvalin_${name} REUSE_FROM korvalin_base)
  else()
    target_precompile_headers(korvalin_${name} PRIVATE ${PROJECT_SOURCE_DIR}/src/base/Precompiled.h)
  endif()
  set_property(GLOBAL APPEND PROPERTY KORVALIN_FLOORS korvalin_${name})
endfunction()
