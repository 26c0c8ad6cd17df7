# add_jvm_test(<name> [TIME_ZONE <zone>] COMMAND <script> <arguments>...)
#
# The script finds the virtual machine and the library in its environment, and classes in the list `jvm_classpath` of
# the caller.
include_guard()

function(add_jvm_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "TIME_ZONE" "COMMAND")
    set(java java)
    if(CMAKE_CROSSCOMPILING_EMULATOR) # For another architecture the emulator comes first.
        list(JOIN CMAKE_CROSSCOMPILING_EMULATOR " " emulator)
        # The runtime's own way of starting programs goes through an ARM helper that this machine cannot execute.
        set(java "${emulator} java -Djdk.lang.Process.launchMechanism=FORK")
    endif()
    list(JOIN jvm_classpath ":" classpath)
    add_test(NAME ${name} COMMAND ${arg_COMMAND})
    set_tests_properties(${name} PROPERTIES
        LABELS jvm
        ENVIRONMENT "JAVA_COMMAND=${java};CLASS_PATH=${classpath};LIBRARY_PATH_OF_JAVA=${CMAKE_BINARY_DIR}/lib;TZ=${arg_TIME_ZONE}")
endfunction()
