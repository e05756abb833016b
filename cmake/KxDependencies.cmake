# Found here once, so that every room sees the same targets.

set(Boost_NO_WARN_NEW_VERSIONS ON)
find_package(Boost 1.81 REQUIRED COMPONENTS log json)
find_package(TBB 2021.8 REQUIRED)
find_package(CLI11 2.1 REQUIRED)
find_package(fmt 9 REQUIRED)
find_package(PkgConfig REQUIRED)
pkg_check_modules(utf8proc REQUIRED IMPORTED_TARGET libutf8proc)
pkg_check_modules(libedit REQUIRED IMPORTED_TARGET libedit)
find_package(Threads REQUIRED)

if(KX_BUILD_TESTS)
  find_package(GTest REQUIRED)
  find_package(rapidcheck REQUIRED CONFIG)
  include(GoogleTest)
endif()
