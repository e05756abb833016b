# A room is an object library; one or several rooms make a shared library. Tests of a room that lies in a library with
# public operations (KX_ROOM_LIBRARY is set) link that library as a host would; tests of the product's inner
# rooms link the rooms' objects, because nothing of them is visible from outside.

# kx_apply_settings(<target>): what every compiled target of this project has in common.
function(kx_apply_settings target)
  target_link_libraries(${target} PRIVATE kx_build_settings)
  set_target_properties(${target} PROPERTIES
    CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    POSITION_INDEPENDENT_CODE ON)
endfunction()

# kx_add_room(<target> SOURCES <file>... [LIBS <target>...] [PRIVATE_LIBS <target>...] [INCLUDE_DIR <folder>])
# LIBS are needed by the room's headers, PRIVATE_LIBS by its sources alone; both are linked into the library in the end.
# INCLUDE_DIR is where includes of the room's headers start, "include" unless given.
function(kx_add_room target)
  cmake_parse_arguments(PARSE_ARGV 1 room "" "INCLUDE_DIR" "SOURCES;LIBS;PRIVATE_LIBS")
  if(NOT room_INCLUDE_DIR)
    set(room_INCLUDE_DIR include)
  endif()
  cmake_path(ABSOLUTE_PATH room_INCLUDE_DIR NORMALIZE)

  add_library(${target} OBJECT ${room_SOURCES})
  kx_apply_settings(${target})
  target_include_directories(${target} PUBLIC ${room_INCLUDE_DIR} PRIVATE src)
  target_link_libraries(${target} PUBLIC ${room_LIBS} PRIVATE ${room_PRIVATE_LIBS})
  set_target_properties(${target} PROPERTIES KX_ROOM_LIBRARY "${KX_ROOM_LIBRARY}")
endfunction()

# kx_add_shared_library(<target> EXPORT_NAME <name> PUBLIC_HEADERS <folder>... [ROOMS <room>...] [SOURCES <file>...]
#                       [LIBS <target>...] [PRIVATE_LIBS <target>...])
# LIBS and the folders of PUBLIC_HEADERS are what users of the library need to compile against it.
function(kx_add_shared_library target)
  cmake_parse_arguments(PARSE_ARGV 1 lib "" "EXPORT_NAME" "ROOMS;SOURCES;PUBLIC_HEADERS;LIBS;PRIVATE_LIBS")
  add_library(${target} SHARED ${lib_SOURCES})
  add_library(KxSearchPath::${lib_EXPORT_NAME} ALIAS ${target})
  kx_apply_settings(${target})
  target_link_libraries(${target} PUBLIC ${lib_LIBS} PRIVATE ${lib_ROOMS} ${lib_PRIVATE_LIBS})
  if(NOT KX_SANITIZE) # a sanitizer's own operations come from the program
    target_link_options(${target} PRIVATE -Wl,-z,defs)
  endif()
  set_target_properties(${target} PROPERTIES
    EXPORT_NAME ${lib_EXPORT_NAME}
    VERSION ${PROJECT_VERSION}
    SOVERSION ${KX_ABI_NUMBER}
    INSTALL_RPATH "$ORIGIN")
  kx_install_headers(${target} PUBLIC ${lib_PUBLIC_HEADERS})
  install(TARGETS ${target} EXPORT KxSearchPathTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Runtime NAMELINK_COMPONENT Development)
endfunction()

# kx_install_headers(<target> <PUBLIC|INTERFACE> <folder>...): users of the target find the headers below these folders.
function(kx_install_headers target scope)
  foreach(folder IN LISTS ARGN)
    cmake_path(ABSOLUTE_PATH folder NORMALIZE)
    target_include_directories(${target} ${scope} $<BUILD_INTERFACE:${folder}>)
    install(DIRECTORY ${folder}/ DESTINATION ${KX_INSTALL_INCLUDEDIR} COMPONENT Development FILES_MATCHING PATTERN "*.h")
  endforeach()
  target_include_directories(${target} ${scope} $<INSTALL_INTERFACE:${KX_INSTALL_INCLUDEDIR}>)
endfunction()
