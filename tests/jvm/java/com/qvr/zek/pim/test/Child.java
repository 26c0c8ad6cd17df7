package com.qvr.zek.pim.test;

import com.qvr.zek.pim.CommitRequest;
import com.qvr.zek.pim.PIMCodes;
import com.qvr.zek.pim.PIMImpl;
import com.qvr.zek.pim.PIMItemImpl;
import java.io.BufferedReader;
import java.io.File;
import java.io.IOException;
import java.io.InputStreamReader;
import java.io.PrintStream;
import java.nio.charset.StandardCharsets;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.stream.Collectors;

/** A second VM on the same stores: what it is asked to do there, and starting it. */
public final class Child {
    /** What a child that came to its end by itself wrote to standard output. */
    static final class Result {
        final String output;

        Result(String output) {
            this.output = output;
        }
    }

    private Child() {
    }

    /**
     * Does one task.
     *
     * @param arguments the task and its arguments
     */
    public static void main(String[] arguments) throws Exception {
        PrintStream out = new PrintStream(System.out, true, "UTF-8");
        switch (arguments[0]) {
        case "open":
            new PIMImpl().openPIMListN(Integer.parseInt(arguments[1]), 0);
            break;
        case "text":
            out.println(new PIMItemImpl().getStringN(Integer.parseInt(arguments[1]), 0, Integer.parseInt(arguments[2]),
                    Integer.parseInt(arguments[3]), 0));
            break;
        case "date":
            out.println(new PIMItemImpl().getDateN(Integer.parseInt(arguments[1]), 0, Integer.parseInt(arguments[2]),
                    Integer.parseInt(arguments[3]), 0));
            break;
        case "commit-for-ever":
            commitForEver(Integer.parseInt(arguments[1]), Integer.parseInt(arguments[2]), out);
            break;
        default:
            throw new IllegalArgumentException(arguments[0]);
        }
    }

    /** Commits items until it is killed, and says the index and the text of each as soon as the commit is back. */
    private static void commitForEver(int listtype, int field, PrintStream out) throws Exception {
        PIMItemImpl items = new PIMItemImpl();
        for (int number = 1;; number++) {
            String text = "item " + number;
            int recindex = new CommitRequest().string(field, text).commit(items, listtype, PIMCodes.NO_RECORD);
            out.println(recindex + "\t" + text);
        }
    }

    static Process start(ProcessBuilder.Redirect output, String... arguments) throws IOException {
        List<String> command = new ArrayList<>(Arrays.asList(System.getProperty("jsr75.java",
                System.getProperty("java.home") + File.separator + "bin" + File.separator + "java").split(" ")));
        command.add("-Djava.library.path=" + System.getProperty("java.library.path"));
        command.add("-cp");
        command.add(System.getProperty("java.class.path"));
        command.add(Child.class.getName());
        command.addAll(Arrays.asList(arguments));
        return new ProcessBuilder(command).redirectOutput(output)
                .redirectError(ProcessBuilder.Redirect.INHERIT).start();
    }

    static Result run(String... arguments) throws IOException, InterruptedException {
        Process child = start(ProcessBuilder.Redirect.PIPE, arguments);
        String output = reader(child).lines().map(line -> line + "\n").collect(Collectors.joining());
        int exit = child.waitFor();
        if (exit != 0) {
            throw new IOException(Arrays.toString(arguments) + " ended with " + exit + " after " + output);
        }
        return new Result(output);
    }

    static BufferedReader reader(Process child) {
        return new BufferedReader(new InputStreamReader(child.getInputStream(), StandardCharsets.UTF_8));
    }
}
