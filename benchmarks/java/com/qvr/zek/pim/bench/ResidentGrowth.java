package com.qvr.zek.pim.bench;

import com.qvr.zek.pim.PIMCodes;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.Paths;
import java.util.Arrays;
import java.util.List;

/** By how much a program's resident memory has grown after 100,000 calls, before which it had made as many. */
final class ResidentGrowth {
    static final int CALLS = 100_000;

    /** The virtual machine's own memory stands still: a heap that is whole from the start, and no compiler. */
    private static final List<String> STILL_JVM =
            Arrays.asList("-Xint", "-XX:+UseSerialGC", "-Xms16m", "-Xmx16m", "-XX:+AlwaysPreTouch");

    private static final int CALLS_OF_A_CYCLE = 1000;

    private final LibraryStore store = new LibraryStore();
    private int recindex = PIMCodes.NO_RECORD;
    private int member = PIMCodes.NO_RECORD;

    private ResidentGrowth() {
    }

    /** The growth in kB. */
    static Measurement.Round in(Path home) {
        return () -> FreshJvm.run(home, STILL_JVM, ResidentGrowth.class);
    }

    public static void main(String[] arguments) throws Exception {
        ResidentGrowth program = new ResidentGrowth();
        program.makeCalls();
        long before = residentKilobytes();
        program.makeCalls();
        System.err.println(residentKilobytes() - before);
    }

    private void makeCalls() throws Exception {
        for (int cycle = 0; cycle < CALLS / CALLS_OF_A_CYCLE; cycle++) {
            store.update(1 + cycle, SampleContact.at(1 + cycle));
            store.search("no contact says this");
            for (int step = 0; step < 8; step++) {
                store.nextToDos(SampleToDo.due(step * 100));
            }
            for (int step = 0; step < 300; step++) {
                recindex = store.next(recindex);
                member = store.nextInCategory(member, SampleContact.CATEGORIES[0]);
            }
            for (int contact = 1; contact <= 30; contact++) {
                store.fields(contact); // Eleven calls.
            }
            for (int contact = 1; contact <= 60; contact++) {
                store.email(contact);
            }
        }
    }

    private static long residentKilobytes() throws IOException {
        for (String line : Files.readAllLines(Paths.get("/proc/self/status"))) {
            if (line.startsWith("VmRSS:")) {
                return Long.parseLong(line.replaceAll("\\D", ""));
            }
        }
        throw new IOException("/proc/self/status does not tell the resident memory");
    }
}
