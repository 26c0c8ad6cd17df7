# What an integrator gets: the stripped library with its debug information beside it, the platform headers with a
# pkg-config file, and, in a folder of its own, the stand-alone platform.

set(PIM_STANDALONE_DIR ${CMAKE_INSTALL_LIBDIR}/jsr75-pim/standalone)

# install_library(<target> <folder> <component>) installs a library stripped and without a run path, and its debug
# information as <folder>/.debug/<file>.debug, where gdb looks for it.
function(install_library target folder component)
  install(TARGETS ${target} LIBRARY DESTINATION ${folder} COMPONENT ${component})
  install(
    CODE "
      set(installed \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${folder}/$<TARGET_FILE_NAME:${target}>\")
      cmake_path(GET installed PARENT_PATH folder)
      cmake_path(GET installed FILENAME name)
      set(debug \"\${folder}/.debug/\${name}.debug\")
      file(MAKE_DIRECTORY \"\${folder}/.debug\")
      file(RPATH_REMOVE FILE \"\${installed}\")
      foreach(step
          \"${CMAKE_OBJCOPY};--only-keep-debug;\${installed};\${debug}\"
          \"${CMAKE_STRIP};--strip-unneeded;\${installed}\"
          \"${CMAKE_OBJCOPY};--remove-section=.gnu_debuglink;--add-gnu-debuglink=\${debug};\${installed}\")
        execute_process(COMMAND \${step} COMMAND_ERROR_IS_FATAL ANY)
      endforeach()
    "
    COMPONENT ${component})
endfunction()

install_library(jsr75pim ${CMAKE_INSTALL_LIBDIR} library)
foreach(platform_library contact-db-service pims-engine jprofiling)
  install_library(${platform_library} ${PIM_STANDALONE_DIR} standalone)
endforeach()

install(
  DIRECTORY platform/include/
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/jsr75-pim
  COMPONENT development)
configure_file(cmake/jsr75-pim.pc.in jsr75-pim.pc @ONLY)
install(
  FILES ${PROJECT_BINARY_DIR}/jsr75-pim.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
  COMPONENT development)
install(
  FILES docs/abi.md docs/porting.md CHANGELOG.md
  DESTINATION ${CMAKE_INSTALL_DOCDIR}
  COMPONENT development)

# Debian packages: cpack in the build folder.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "The jsr75-pim maintainers <maintainers@jsr75-pim.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${PROJECT_DESCRIPTION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES OFF)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS OFF)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME jsr75-pim)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_DEPENDS "libc6 (>= 2.36), libglib2.0-0 (>= 2.28)")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME jsr75-pim-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "jsr75-pim (= ${PROJECT_VERSION}), libglib2.0-dev")
set(CPACK_DEBIAN_STANDALONE_PACKAGE_NAME jsr75-pim-standalone)
set(CPACK_DEBIAN_STANDALONE_PACKAGE_DEPENDS
    "libc6 (>= 2.36), libglib2.0-0 (>= 2.28), libsqlite3-0 (>= 3.40), libstdc++6 (>= 12)")
if(CMAKE_CROSSCOMPILING)
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE armel)
endif()
include(CPack)
