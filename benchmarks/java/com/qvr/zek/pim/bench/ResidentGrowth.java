package com.qvr.zek.pim.bench;

import com.qvr.zek.pim.PIMCodes;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.Paths;
import java.util.Arrays;
import java.util.List;

/** By how much a program's resident memory grows with 100,000 calls more. */
final class ResidentGrowth {
    private static final int CALLS = 100_000;

    /** The virtual machine's own memory stands still: a heap that is whole from the start, and no compiler. */
    private static final List<String> STILL_JVM =
            Arrays.asList("-Xint", "-XX:+UseSerialGC", "-Xms16m", "-Xmx16m", "-XX:+AlwaysPreTouch");

    private static final int WARM_UPS = 2;

    /** Commits take blocks of ever other sizes; after so many the C library's heap has the gaps for all of them. */
    private static final int COMMITS_TO_SETTLE = 1500;
    private static final int ROUNDS = 3;
    private static final int CYCLES = CALLS / 1000;

    private final LibraryStore store = new LibraryStore();
    private int recindex = PIMCodes.NO_RECORD;
    private int member = PIMCodes.NO_RECORD;

    private ResidentGrowth() {
    }

    /** The kilobytes of growth of one program, round by round of so many calls. */
    static Samples in(Path home) throws IOException, InterruptedException {
        String growths = FreshJvm.run(home, STILL_JVM, ResidentGrowth.class);
        return new Samples(Arrays.stream(growths.split(" ")).mapToDouble(Double::parseDouble).toArray());
    }

    public static void main(String[] arguments) throws Exception {
        ResidentGrowth program = new ResidentGrowth();
        program.commitChanges(COMMITS_TO_SETTLE);
        StringBuilder growths = new StringBuilder();
        long before = 0;
        for (int round = -WARM_UPS; round < ROUNDS; round++) {
            program.makeCalls();
            long now = residentKilobytes();
            if (round >= 0) {
                growths.append(now - before).append(' ');
            }
            before = now;
        }
        System.err.println(growths);
    }

    private void commitChanges(int count) throws Exception {
        for (int i = 0; i < count; i++) {
            int changed = 1 + i % CYCLES;
            store.update(changed, SampleContact.at(changed));
        }
    }

    private void makeCalls() throws Exception {
        commitChanges(CYCLES);
        for (int cycle = 0; cycle < CYCLES; cycle++) {
            if (cycle % 10 == 0) {
                store.search("no contact says this");
            }
            for (int step = 0; step < 9; step++) {
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
        System.gc();
        for (String line : Files.readAllLines(Paths.get("/proc/self/status"))) {
            if (line.startsWith("VmRSS:")) {
                return Long.parseLong(line.replaceAll("\\D", ""));
            }
        }
        throw new IOException("/proc/self/status does not tell the resident memory");
    }
}
