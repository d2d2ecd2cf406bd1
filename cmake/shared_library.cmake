# quarry_shared_library(NAME): sets the properties that both shared libraries have in common.
function(quarry_shared_library name)
  set(map ${PROJECT_SOURCE_DIR}/cmake/${name}.map)
  target_compile_features(${name} PUBLIC cxx_std_17)
  target_compile_options(${name} PRIVATE -fno-semantic-interposition)
  target_link_libraries(${name}
    PRIVATE $<BUILD_INTERFACE:quarry_warnings> $<BUILD_INTERFACE:quarry_sanitize>
      $<BUILD_INTERFACE:quarry_hardening>)
  target_link_options(${name} PRIVATE -Wl,--version-script=${map})
  set_target_properties(${name} PROPERTIES
    CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON
    VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR} LINK_DEPENDS ${map}
    LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR} INSTALL_RPATH "$ORIGIN")
  # Undefined symbols are link errors. Not with sanitizers, whose runtime clang links into the
  # program, nor with a host's platform library, which the program links.
  if(NOT QUARRY_SANITIZE AND QUARRY_PLATFORM STREQUAL "local")
    target_link_options(${name} PRIVATE -Wl,-z,defs)
  endif()
endfunction()
