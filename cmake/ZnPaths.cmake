# Run-time library search path of the launcher: the install tree's own
# runtime first, then the JDK this build was made with.
get_filename_component(ZN_JDK_SERVER_DIR "${JAVA_JVM_LIBRARY}" DIRECTORY)
set(ZN_LAUNCHER_RPATH
    "/opt/zn/lib:/opt/zn/j2re/lib/i386:/opt/zn/j2re/lib/i386/server:${ZN_JDK_SERVER_DIR}:${ZN_JDK_HOME}/lib")
