package com.qvr.zek.pim.bench;

import java.io.BufferedReader;
import java.io.File;
import java.io.IOException;
import java.io.InputStreamReader;
import java.nio.file.Path;
import java.nio.file.Paths;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Collections;
import java.util.List;

/** Runs a program of the benchmark in a virtual machine of its own, on a store of its own. */
final class FreshJvm {
    private FreshJvm() {
    }

    /** The last line that the program writes to standard error. */
    static String run(Path home, List<String> options, Class<?> program, String... arguments)
            throws IOException, InterruptedException {
        List<String> command = new ArrayList<>();
        command.add(Paths.get(System.getProperty("java.home"), "bin", "java").toString());
        for (String inherited : Arrays.asList("java.library.path", "java.class.path")) {
            command.add("-D" + inherited + "=" + System.getProperty(inherited));
        }
        command.addAll(options);
        command.add(program.getName());
        Collections.addAll(command, arguments);

        ProcessBuilder builder = new ProcessBuilder(command).redirectOutput(new File("/dev/null"));
        builder.environment().put("JSR75_PIM_HOME", home.toString());
        Process process = builder.start();
        String last = "";
        try (BufferedReader lines = new BufferedReader(new InputStreamReader(process.getErrorStream()))) {
            for (String line = lines.readLine(); line != null; line = lines.readLine()) {
                last = line;
            }
        }
        if (process.waitFor() != 0) {
            throw new IOException(program.getSimpleName() + " failed: " + last);
        }
        return last;
    }
}
