# What is installed, and how programs find it. The installed tree is relocatable. The components are
# runtime (the shared libraries), devel (what programs are built with) and tool (quarry-config).
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/quarry_config)
file(RELATIVE_PATH headers_dir ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_INCLUDEDIR}/quarry)

# What programs need besides quarry_config: our platform library, unless the host has its own, and
# what that requires in turn when it is static.
set(platform_library "")
set(requires "")
set(settings_requires Requires.private)
if(QUARRY_PLATFORM STREQUAL "local")
  set(platform_library " -lquarry_platform")
endif()
if(QUARRY_LIBRARY_TYPE STREQUAL "STATIC")
  set(settings_requires Requires)
endif()
if(platform_library AND QUARRY_LIBRARY_TYPE STREQUAL "STATIC")
  set(requires libsodium)
endif()

install(TARGETS quarry_config quarry_platform quarry_settings EXPORT quarry_configTargets
  LIBRARY COMPONENT runtime NAMELINK_COMPONENT devel
  ARCHIVE COMPONENT devel
  FILE_SET HEADERS DESTINATION ${headers_dir} COMPONENT devel
  INCLUDES DESTINATION ${headers_dir}) # for users with CMake before 3.23, which has no file sets

# For CMake: find_package(quarry_config CONFIG), quarry::config, quarry::platform, quarry::settings.
install(EXPORT quarry_configTargets NAMESPACE quarry:: DESTINATION ${package_dir}
  COMPONENT devel)
configure_package_config_file(cmake/quarry_config-config.cmake.in
  ${PROJECT_BINARY_DIR}/quarry_config-config.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/quarry_config-config-version.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/quarry_config-config.cmake
  ${PROJECT_BINARY_DIR}/quarry_config-config-version.cmake
  DESTINATION ${package_dir} COMPONENT devel)

# For pkg-config, which sets pcfiledir to the folder of the .pc file. An installation in /usr is not
# relocated, and with the plain prefix pkg-config leaves out the compiler's default paths.
set(prefix /usr)
if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  file(RELATIVE_PATH prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
  set(prefix "\${pcfiledir}/${prefix}")
endif()
file(RELATIVE_PATH libdir ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_LIBDIR})
foreach(library IN ITEMS config settings)
  set(file ${PROJECT_BINARY_DIR}/quarry-${library}.pc)
  configure_file(cmake/quarry-${library}.pc.in ${file} @ONLY)
  install(FILES ${file} DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT devel)
endforeach()

if(NOT QUARRY_BUILD_TOOL)
  return()
endif()
file(RELATIVE_PATH to_libraries ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
set_target_properties(quarry-config PROPERTIES INSTALL_RPATH "$ORIGIN/${to_libraries}")
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME tool)
install(TARGETS quarry-config)
install(FILES ${PROJECT_BINARY_DIR}/completions/quarry-config.bash RENAME quarry-config
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
set(QUARRY_ZSH_DIR ${CMAKE_INSTALL_DATADIR}/zsh/site-functions CACHE STRING
  "Install directory of the zsh completion")
install(FILES ${PROJECT_BINARY_DIR}/completions/_quarry-config DESTINATION ${QUARRY_ZSH_DIR})
install(FILES examples/agent.conf examples/client.conf examples/broken.conf
  DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/quarry-config/examples)

# Man pages, when scdoc is installed.
find_program(SCDOC scdoc)
if(NOT SCDOC)
  message(STATUS "scdoc is missing (Debian: scdoc): man pages are not installed")
  return()
endif()
set(man_1 ${PROJECT_BINARY_DIR}/man/quarry-config.1.scd) # generated
set(man_5 ${PROJECT_SOURCE_DIR}/man/quarry-config.5.scd)
foreach(section IN ITEMS 1 5)
  set(page ${PROJECT_BINARY_DIR}/man/quarry-config.${section})
  add_custom_command(OUTPUT ${page} DEPENDS ${man_${section}} words
    COMMAND ${SCDOC} < ${man_${section}} > ${page} VERBATIM)
  list(APPEND pages ${page})
  install(FILES ${page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section})
endforeach()
add_custom_target(man ALL DEPENDS ${pages})
