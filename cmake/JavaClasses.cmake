# add_java_classes(<target> SOURCES <folder> OUTPUT <folder> [HEADERS <folder>] [CLASSPATH <entry>...] [DEPENDS <target>...])
#
# Compiles every .java file below SOURCES into OUTPUT, which holds nothing else afterwards; HEADERS receives the C
# headers of the native methods. Language level 8 is what the virtual machines of the devices take.
include_guard()

function(add_java_classes target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "SOURCES;OUTPUT;HEADERS" "CLASSPATH;DEPENDS")
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${arg_SOURCES}/*.java")
    set(stamp "${CMAKE_CURRENT_BINARY_DIR}/${target}.stamp")
    set(options --release 8 -encoding UTF-8 -Xlint:all,-options,-processing -Werror -d "${arg_OUTPUT}")
    if(arg_CLASSPATH)
        list(JOIN arg_CLASSPATH ":" classpath)
        list(APPEND options -proc:none -classpath "${classpath}")
    endif()
    if(arg_HEADERS)
        list(APPEND options -h "${arg_HEADERS}")
    endif()
    set(dependency_stamps "")
    foreach(dependency IN LISTS arg_DEPENDS)
        get_target_property(dependency_stamp ${dependency} JAVA_CLASSES_STAMP)
        list(APPEND dependency_stamps "${dependency_stamp}")
    endforeach()
    add_custom_command(
        OUTPUT "${stamp}"
        COMMAND "${CMAKE_COMMAND}" -E rm -rf "${arg_OUTPUT}" ${arg_HEADERS}
        COMMAND "${CMAKE_COMMAND}" -E make_directory "${arg_OUTPUT}"
        COMMAND "${JAVAC}" ${options} ${sources}
        COMMAND "${CMAKE_COMMAND}" -E touch "${stamp}"
        DEPENDS ${sources} ${dependency_stamps}
        COMMENT "Compiling ${target}"
        VERBATIM)
    add_custom_target(${target} ALL DEPENDS "${stamp}")
    set_target_properties(${target} PROPERTIES JAVA_CLASSES_STAMP "${stamp}" JAVA_CLASSES_DIR "${arg_OUTPUT}")
    if(arg_DEPENDS)
        add_dependencies(${target} ${arg_DEPENDS})
    endif()
endfunction()

# The jar `name` of a Debian package in `variable`.
function(find_debian_jar variable name)
    find_file(${variable} "${name}.jar" PATHS /usr/share/java NO_CMAKE_FIND_ROOT_PATH REQUIRED)
endfunction()
