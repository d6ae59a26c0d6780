include(CMakePackageConfigHelpers)

set(VEK0_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/vek0core)
install(TARGETS zim0lang vek0core vek0draw EXPORT vek0core FILE_SET HEADERS)
install(EXPORT vek0core NAMESPACE vek0core:: FILE vek0core-targets.cmake
        DESTINATION ${VEK0_CMAKE_DIR})
configure_package_config_file(cmake/vek0core-config.cmake.in vek0core-config.cmake
  INSTALL_DESTINATION ${VEK0_CMAKE_DIR})
# While the major version is 0, a new minor version may break its users.
write_basic_package_version_file(vek0core-config-version.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/vek0core-config.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/vek0core-config-version.cmake
        DESTINATION ${VEK0_CMAKE_DIR})

if(NOT BUILD_SHARED_LIBS)
  set(VEK0_PC_CFLAGS "-DVEK0_STATIC")
endif()
# The library folder may be one level deep or two (lib/x86_64-linux-gnu).
file(RELATIVE_PATH VEK0_PC_PREFIX
     ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(cmake/vek0core.pc.in vek0core.pc @ONLY)
configure_file(cmake/vek0draw.pc.in vek0draw.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/vek0core.pc ${CMAKE_CURRENT_BINARY_DIR}/vek0draw.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# For those who have nothing but the package.
set(VEK0_DOC_DIR ${CMAKE_INSTALL_DATADIR}/doc/vek0)
install(FILES README.md ARCHITECTURE.md CONTRIBUTING.md DESTINATION ${VEK0_DOC_DIR})
install(DIRECTORY docs examples samples DESTINATION ${VEK0_DOC_DIR})

if(TARGET vek0)
  install(TARGETS vek0)
  # What `vek0 serve` and `vek0 view` show drawings in.
  set(VEK0_PAGE "" CACHE PATH "Folder of the built page, to install it with the tool")
  if(VEK0_PAGE)
    install(DIRECTORY ${VEK0_PAGE}/ DESTINATION ${CMAKE_INSTALL_DATADIR}/vek0/page)
  endif()
  # The tool itself prints its manual page and the completions.
  if(NOT CMAKE_CROSSCOMPILING)
    set(shell_files ${CMAKE_CURRENT_BINARY_DIR}/shellfiles)
    file(MAKE_DIRECTORY ${shell_files})
    function(vek0_print name)
      string(REPLACE ";" " " arguments "${ARGN}")
      install(CODE "execute_process(COMMAND \"$<TARGET_FILE:vek0>\" ${arguments}
        OUTPUT_FILE \"${shell_files}/${name}\" COMMAND_ERROR_IS_FATAL ANY)")
    endfunction()
    vek0_print(vek0.1 man)
    vek0_print(vek0 completion bash)
    vek0_print(_vek0 completion zsh)
    vek0_print(vek0.fish completion fish)
    install(FILES ${shell_files}/vek0.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
    install(FILES ${shell_files}/vek0
            DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
    install(FILES ${shell_files}/_vek0 DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
    install(FILES ${shell_files}/vek0.fish
            DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
  endif()
endif()
