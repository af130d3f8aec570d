# Install rules and the Debian package.
#
#   cmake --install build                      the standard tree below /
#   cmake --install build --prefix /srv/zn     the same tree for ZN_BASE_DIR=/srv/zn
#   DESTDIR=/tmp/stage cmake --install build   staged below /tmp/stage
#   cpack --config build/CPackConfig.cmake     znlauncher_<version>_<arch>.deb
#
# Layout (below the prefix):
#   opt/zn/bin/znlauncher          the launcher (mode 0755, or 4755 root with ZN_INSTALL_SETUID)
#   opt/zn/bin/<command>           36 relative links to znlauncher, one per command name
#   opt/zn/bin/znsetlocale         the locale settings writer
#   opt/zn/j2re -> Java home       the Java runtime (ZN_RUNTIME_JAVA_HOME)
#   opt/zn/lib, opt/zn/patch       the product's archives and patch archives (empty)
#   opt/zn/share/man/man1          the manual page, and one link per command name
#   etc/opt/zn/config              the global settings file is written here at run time
#   var/opt/zn/logs                traces and JVM logs are written here at run time

include(${CMAKE_CURRENT_LIST_DIR}/ZnInstallLayout.cmake)

# The install tree starts at the root unless a prefix is given. A build tree
# configured before these rules existed holds CMake's own default, /usr/local,
# which is moved to the root once as well.
if(CMAKE_INSTALL_PREFIX_INITIALIZED_TO_DEFAULT
   OR (NOT DEFINED CACHE{ZN_INSTALL_PREFIX_SET} AND CMAKE_INSTALL_PREFIX STREQUAL "/usr/local"))
  set(CMAKE_INSTALL_PREFIX "/" CACHE PATH "Install base (ZN_BASE_DIR of a relocated tree)" FORCE)
endif()
set(ZN_INSTALL_PREFIX_SET ON CACHE INTERNAL "The install prefix default has been applied")

zn_read_command_names(ZN_COMMAND_NAMES)

# The links are made once in the build tree and installed as links, so that
# they appear in the install manifest and in the package like any file.
set(link_dir ${PROJECT_BINARY_DIR}/install-links)
file(REMOVE_RECURSE ${link_dir})
file(MAKE_DIRECTORY ${link_dir}/bin ${link_dir}/man1 ${link_dir}/java)
set(command_links "")
set(man_links "")
foreach(name IN LISTS ZN_COMMAND_NAMES)
  file(CREATE_LINK znlauncher ${link_dir}/bin/${name} SYMBOLIC)
  file(CREATE_LINK znlauncher.1 ${link_dir}/man1/${name}.1 SYMBOLIC)
  list(APPEND command_links ${link_dir}/bin/${name})
  list(APPEND man_links ${link_dir}/man1/${name}.1)
endforeach()
file(CREATE_LINK znlauncher.1 ${link_dir}/man1/znsetlocale.1 SYMBOLIC)
list(APPEND man_links ${link_dir}/man1/znsetlocale.1)
file(CREATE_LINK ${ZN_RUNTIME_JAVA_HOME} ${link_dir}/java/j2re SYMBOLIC)

set(program_permissions OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
                        WORLD_READ WORLD_EXECUTE)
set(launcher_permissions ${program_permissions})
if(ZN_INSTALL_SETUID)
  list(APPEND launcher_permissions SETUID)
endif()

install(TARGETS znlauncher RUNTIME DESTINATION ${ZN_INSTALL_BINDIR}
        PERMISSIONS ${launcher_permissions})
if(ZN_INSTALL_SETUID)
  # The bit means "run as the file's owner": make the owner root when we can
  # (chown clears the bit, so it is set again after). The package is owned by
  # root whoever builds it.
  install(CODE "
    set(launcher \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${ZN_INSTALL_BINDIR}/znlauncher\")
    execute_process(COMMAND id -u OUTPUT_VARIABLE uid OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(uid STREQUAL \"0\")
      execute_process(COMMAND chown 0:0 \${launcher} COMMAND_ERROR_IS_FATAL ANY)
      file(CHMOD \${launcher} PERMISSIONS ${launcher_permissions})
    else()
      message(WARNING \"ZN_INSTALL_SETUID: installing as user \${uid}, not root: \"
                      \"\${launcher} runs with that user's privileges, not root's\")
    endif()")
endif()
install(FILES ${command_links} DESTINATION ${ZN_INSTALL_BINDIR})
install(TARGETS znsetlocale RUNTIME DESTINATION ${ZN_INSTALL_BINDIR}
        PERMISSIONS ${program_permissions})

install(FILES ${link_dir}/java/j2re DESTINATION opt/zn)
foreach(dir ${ZN_INSTALL_LIBDIR} ${ZN_INSTALL_PATCHDIR} ${ZN_INSTALL_CONFIGDIR} ${ZN_INSTALL_LOGDIR})
  install(DIRECTORY DESTINATION ${dir})
endforeach()

install(FILES ${PROJECT_SOURCE_DIR}/docs/znlauncher.1 DESTINATION ${ZN_INSTALL_MAN1DIR}
        PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
install(FILES ${man_links} DESTINATION ${ZN_INSTALL_MAN1DIR})

# The Debian package: the same rules, staged by CPack below "/".
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME znlauncher)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "Zn launcher developers <zn-launcher@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Zn management application command launcher")
set(CPACK_PACKAGE_DESCRIPTION "One executable, installed under 36 command names in /opt/zn/bin, \
that starts a Java virtual machine in its own process and runs the Java class its command \
name selects.")
set(CPACK_PACKAGING_INSTALL_PREFIX "/")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# C and C++ libraries from dpkg-shlibdeps; the Java runtime behind
# /opt/zn/j2re (and libjvm, which the launcher links) named here.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "${ZN_PACKAGE_JAVA_DEPENDS}")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/packaging/debian/postrm)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
