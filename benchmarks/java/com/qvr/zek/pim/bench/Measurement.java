package com.qvr.zek.pim.bench;

import java.lang.management.ManagementFactory;
import java.lang.management.ThreadMXBean;
import java.util.LinkedHashMap;
import java.util.Map;
import java.util.function.LongSupplier;

/** Measures several subjects round by round in turn, so that what disturbs the machine meets all of them. */
final class Measurement {
    /** One operation, to be done many times. */
    interface Work {
        void run() throws Exception;
    }

    /** One round of a subject; gives what it cost. */
    interface Round {
        double cost() throws Exception;
    }

    private static final ThreadMXBean THREADS = ManagementFactory.getThreadMXBean();

    private static final long ROUND_NANOS = 2_000_000L;

    private final int warmUps;
    private final int rounds;

    Measurement(int warmUps, int rounds) {
        this.warmUps = warmUps;
        this.rounds = rounds;
    }

    // Both kinds of round give the nanoseconds of one operation.

    /**
     * Rounds of operations that wait for nothing, in the processor time of the thread, in which other programs have no
     * part. The first rounds find out how many operations make a round long enough for the clock.
     */
    static Round working(Work work) {
        int[] operations = {1};
        return () -> {
            long elapsed = elapsed(THREADS::getCurrentThreadCpuTime, operations[0], work);
            double cost = (double) elapsed / operations[0];
            if (elapsed < ROUND_NANOS) {
                operations[0] *= 2;
            }
            return cost;
        };
    }

    /** Rounds of {@code operations} that wait, for the disk. */
    static Round waiting(int operations, Work work) {
        return () -> (double) elapsed(System::nanoTime, operations, work) / operations;
    }

    private static long elapsed(LongSupplier clock, int operations, Work work) throws Exception {
        long started = clock.getAsLong();
        for (int i = 0; i < operations; i++) {
            work.run();
        }
        return clock.getAsLong() - started;
    }

    Map<String, Samples> of(Map<String, Round> subjects) throws Exception {
        Map<String, double[]> costs = new LinkedHashMap<>();
        for (int round = -warmUps; round < rounds; round++) {
            for (Map.Entry<String, Round> subject : subjects.entrySet()) {
                double cost = subject.getValue().cost();
                if (round >= 0) {
                    costs.computeIfAbsent(subject.getKey(), name -> new double[rounds])[round] = cost;
                }
            }
        }
        Map<String, Samples> samples = new LinkedHashMap<>();
        costs.forEach((name, byRound) -> samples.put(name, new Samples(byRound)));
        return samples;
    }
}
