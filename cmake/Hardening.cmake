# Release hardening for every target: position-independent executables,
# full RELRO with immediate binding, a non-executable stack, the stack
# protector, _FORTIFY_SOURCE and the stricter format checks. None of it
# changes what the programs do.
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

add_compile_options(-fstack-protector-strong -Wformat=2)
add_link_options(LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack)

# _FORTIFY_SOURCE needs optimisation, and the sanitizers check the same
# calls themselves (their interceptors do not see the fortified variants).
if(NOT ZN_SANITIZE AND NOT ZN_BUILD_FUZZERS AND NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
  set(ZN_FORTIFIED ON)
  add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
else()
  set(ZN_FORTIFIED OFF)
endif()

# The launcher's behaviour for a set-user-id install (SetuidGuard.h). Off:
# znlauncher behaves exactly as documented. On: znlauncher is the hardened
# variant. Either way the hardened variant is also built as
# znlauncher_hardened, for the tests; it is never installed.
option(ZN_HARDENED_SETUID "Build znlauncher hardened for a set-user-id install" OFF)
