# kx_add_test(<name> SOURCES <file>... ROOMS <room>... [LIBS <target>...])
# A GoogleTest program whose cases are known to ctest one by one. RapidCheck and GoogleMock can be used.
function(kx_add_test name)
  cmake_parse_arguments(PARSE_ARGV 1 test "" "" "SOURCES;ROOMS;LIBS")
  foreach(source IN LISTS test_SOURCES)
    cmake_path(ABSOLUTE_PATH source NORMALIZE)
    set_property(GLOBAL APPEND PROPERTY KX_REGISTERED_TESTS ${source})
  endforeach()
  if(NOT KX_BUILD_TESTS)
    return()
  endif()

  add_executable(${name} ${test_SOURCES})
  kx_apply_settings(${name})
  target_link_libraries(${name} PRIVATE
    ${test_LIBS} GTest::gmock GTest::gtest_main rapidcheck_gtest rapidcheck_gmock)
  foreach(room IN LISTS test_ROOMS)
    set(library $<TARGET_PROPERTY:${room},KX_ROOM_LIBRARY>)
    target_link_libraries(${name} PRIVATE $<IF:$<BOOL:${library}>,${library},${room}>)
  endforeach()
  gtest_discover_tests(${name} TEST_PREFIX ${name}. DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 300)
endfunction()

# A test file that nobody compiles is worse than none: it looks like a proof.
function(kx_check_all_tests_are_registered)
  get_property(registered GLOBAL PROPERTY KX_REGISTERED_TESTS)
  file(GLOB_RECURSE present CONFIGURE_DEPENDS
    ${PROJECT_SOURCE_DIR}/foundation/*.cpp ${PROJECT_SOURCE_DIR}/path_utilities/*.cpp
    ${PROJECT_SOURCE_DIR}/search_path/*.cpp ${PROJECT_SOURCE_DIR}/apps/*.cpp ${PROJECT_SOURCE_DIR}/interfaces/*.cpp)
  list(FILTER present INCLUDE REGEX "/test/")
  list(REMOVE_ITEM present ${registered})
  if(present)
    list(JOIN present "\n  " files)
    message(FATAL_ERROR "Test files that belong to no test:\n  ${files}")
  endif()
endfunction()
