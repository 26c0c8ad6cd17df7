package com.qvr.zek.pim.bench;

/** A walk over a list that begins again at its end, and holds each time to the number of records. */
final class Walk {
    /** The record after another one, -1 at the end and, as an argument, before the first. */
    interface Step {
        int next(int recindex) throws Exception;
    }

    private final Step step;
    private final int records;
    private int recindex = -1;
    private int walked;

    Walk(int records, Step step) {
        this.records = records;
        this.step = step;
    }

    /** The next record; between two walks, the first one. */
    int next() throws Exception {
        recindex = step.next(recindex);
        if (recindex == -1) {
            if (walked != records) {
                throw new IllegalStateException("walked " + walked + " records instead of " + records);
            }
            walked = 0;
            recindex = step.next(-1);
        }
        walked++;
        return recindex;
    }
}
