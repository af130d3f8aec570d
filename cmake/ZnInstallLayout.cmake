# The install tree, the install options and the command names. Included by
# cmake/Install.cmake (the rules) and by tests/install (which checks them).
#
# Every destination is relative to CMAKE_INSTALL_PREFIX, the launcher's
# install base: "/" for a standard installation, or the directory that
# ZN_BASE_DIR names for a relocated one.

option(ZN_INSTALL_SETUID
       "Install znlauncher owned by root with mode 4755 (set-user-id root; see README)" OFF)
set(ZN_RUNTIME_JAVA_HOME "${ZN_JDK_HOME}" CACHE PATH
    "Java home that the installed opt/zn/j2re links to")
set(ZN_PACKAGE_JAVA_DEPENDS "openjdk-17-jre-headless" CACHE STRING
    "Debian package that provides ZN_RUNTIME_JAVA_HOME")

set(ZN_INSTALL_BINDIR opt/zn/bin)
set(ZN_INSTALL_LIBDIR opt/zn/lib)
set(ZN_INSTALL_PATCHDIR opt/zn/patch)
set(ZN_INSTALL_JAVA_HOME opt/zn/j2re)
set(ZN_INSTALL_MAN1DIR opt/zn/share/man/man1)
set(ZN_INSTALL_CONFIGDIR etc/opt/zn/config)
set(ZN_INSTALL_LOGDIR var/opt/zn/logs)

# zn_read_command_names(<out-var>): the names the launcher is installed
# under, read from the command tables themselves so that a row added there
# gets its link without a second list to keep in step. A row counts when the
# lookup can select it: the lookup key is folded to lower case before an exact
# comparison, so a row name with an upper-case letter never matches and gets
# no link. The install tests check the result against the compiled tables.
function(zn_read_command_names out)
  set(source ${PROJECT_SOURCE_DIR}/src/cxx/shared/ZnCLI/CommandTables.cpp)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${source})
  file(READ ${source} text)
  # Semicolons would split the matches as CMake lists; the rows have none.
  string(REPLACE ";" "@" text "${text}")
  string(REGEX MATCHALL "const CommandRow [A-Za-z0-9_]+\\[[0-9]+\\] = {[^@]*}@" tables "${text}")
  set(names "")
  set(tableCount 0)
  foreach(table IN LISTS tables)
    string(REGEX MATCH "CommandRow ([A-Za-z0-9_]+)\\[([0-9]+)\\]" header "${table}")
    set(tableName ${CMAKE_MATCH_1})
    set(declared ${CMAKE_MATCH_2})
    string(REGEX MATCHALL "{\"[^\"]*\"," rows "${table}")
    list(LENGTH rows found)
    if(NOT found EQUAL declared)
      message(FATAL_ERROR "${source}: read ${found} rows of ${tableName}, which declares ${declared}")
    endif()
    foreach(row IN LISTS rows)
      string(REGEX REPLACE "^{\"([^\"]*)\",$" "\\1" name "${row}")
      string(TOLOWER "${name}" folded)
      if(name STREQUAL folded AND NOT name STREQUAL "")
        list(APPEND names ${name})
      endif()
    endforeach()
    math(EXPR tableCount "${tableCount} + 1")
  endforeach()
  if(NOT tableCount EQUAL 4)
    message(FATAL_ERROR "${source}: found ${tableCount} command tables, expected 4")
  endif()
  set(unique ${names})
  list(REMOVE_DUPLICATES unique)
  if(NOT unique STREQUAL names)
    message(FATAL_ERROR "${source}: a command name occurs twice")
  endif()
  set(${out} ${names} PARENT_SCOPE)
endfunction()
