# quarry_library(NAME): sets the properties that the libraries have in common.
function(quarry_library name)
  quarry_public_headers(${name})
  # First, because a host's folders may have headers of the same names.
  target_include_directories(${name} BEFORE PRIVATE ${PROJECT_SOURCE_DIR})
  target_compile_features(${name} PUBLIC cxx_std_17)
  target_link_libraries(${name}
    PRIVATE $<BUILD_INTERFACE:quarry_warnings> $<BUILD_INTERFACE:quarry_sanitize>
      $<BUILD_INTERFACE:quarry_hardening>)
  set_target_properties(${name} PROPERTIES
    CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON
    LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR} ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
  if(QUARRY_LIBRARY_TYPE STREQUAL "SHARED")
    quarry_shared_library(${name})
  endif()
endfunction()

function(quarry_shared_library name)
  set(map ${PROJECT_BINARY_DIR}/${name}.map)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/${name}.map.in ${map} @ONLY)
  target_compile_options(${name} PRIVATE -fno-semantic-interposition)
  target_link_options(${name} PRIVATE -Wl,--version-script=${map})
  set_target_properties(${name} PROPERTIES VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR} LINK_DEPENDS ${map} INSTALL_RPATH "$ORIGIN")
  # Undefined symbols are link errors. Not with sanitizers, whose runtime clang links into the
  # program, nor with a host's platform library, which the program links.
  if(NOT QUARRY_SANITIZE AND QUARRY_PLATFORM STREQUAL "local")
    target_link_options(${name} PRIVATE -Wl,-z,defs)
  endif()
endfunction()

# quarry_public_headers(NAME): users of the target in this build see the headers of its file set and
# no others, as users of the installed tree do: by links in a folder of the build.
function(quarry_public_headers name)
  set(folder ${PROJECT_BINARY_DIR}/include)
  get_target_property(headers ${name} HEADER_SET)
  foreach(header IN LISTS headers)
    cmake_path(ABSOLUTE_PATH header)
    cmake_path(RELATIVE_PATH header BASE_DIRECTORY ${PROJECT_SOURCE_DIR} OUTPUT_VARIABLE link)
    set(link ${folder}/${link})
    cmake_path(GET link PARENT_PATH parent)
    file(MAKE_DIRECTORY ${parent})
    file(CREATE_LINK ${header} ${link} SYMBOLIC)
  endforeach()
  # Replaces the base folder of the file set, which is all of the source tree.
  set_target_properties(${name} PROPERTIES
    INTERFACE_INCLUDE_DIRECTORIES $<BUILD_INTERFACE:${folder}>)
endfunction()
