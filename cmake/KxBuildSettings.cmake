# What every target of this project is compiled with. Nothing here reaches a project that includes this one.

include(CheckLinkerFlag)

# Developers' settings in one place; rooms, libraries, programs and tests link it privately.
add_library(kx_build_settings INTERFACE)
target_compile_features(kx_build_settings INTERFACE cxx_std_20)
# Unique symbols would pin a library in memory and merge statics across libraries that are meant to be apart.
target_compile_options(kx_build_settings INTERFACE $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)
# Nobody replaces single functions of these libraries at load time, so calls inside one need no way round.
target_compile_options(kx_build_settings INTERFACE $<$<NOT:$<CONFIG:Debug>>:-fno-semantic-interposition>)
target_link_options(kx_build_settings INTERFACE $<$<NOT:$<CONFIG:Debug>>:LINKER:-Bsymbolic-functions>)

if(KX_DEVELOPER)
  target_compile_options(kx_build_settings INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wunused
    -Wimplicit-fallthrough -Wdouble-promotion -Wformat=2 -Werror
    # A constructor's parameter may bear the name of the member it sets, which g++ tells apart only in this form.
    $<IF:$<CXX_COMPILER_ID:GNU>,-Wshadow=local,-Wshadow>
    $<$<CXX_COMPILER_ID:GNU>:-Wduplicated-cond -Wlogical-op>
    # typeid(*pointer) is meant to evaluate its operand.
    $<$<CXX_COMPILER_ID:Clang>:-Wno-potentially-evaluated-expression>)
  check_linker_flag(CXX "-fuse-ld=mold" KX_HAS_MOLD)
  if(KX_HAS_MOLD)
    target_link_options(kx_build_settings INTERFACE -fuse-ld=mold)
  endif()
  find_program(KX_CCACHE ccache)
  if(KX_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    # The sloppiness is what ccache asks for before it caches compilations that use a precompiled header.
    set(CMAKE_CXX_COMPILER_LAUNCHER
        ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
        ${KX_CCACHE})
  endif()
endif()

if(KX_SANITIZE)
  target_compile_options(kx_build_settings INTERFACE
    -fsanitize=${KX_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(kx_build_settings INTERFACE -fsanitize=${KX_SANITIZE})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    target_compile_options(kx_build_settings INTERFACE
      -fsanitize-ignorelist=${PROJECT_SOURCE_DIR}/cmake/sanitizer-ignorelist.txt)
  endif()
endif()
if(KX_COVERAGE)
  target_compile_options(kx_build_settings INTERFACE --coverage)
  target_link_options(kx_build_settings INTERFACE --coverage)
endif()
