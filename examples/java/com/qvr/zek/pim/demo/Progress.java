package com.qvr.zek.pim.demo;

/** A counter on standard error, so that a long import is seen to move and the report stays clean. */
final class Progress {
    private static final long INTERVAL_NANOS = 200_000_000L;
    private static final int LINE_EVERY = 1000;

    private final String what;
    private final boolean inPlace;
    private long shownAt = System.nanoTime();
    private boolean shown;

    Progress(String what, boolean inPlace) {
        this.what = what;
        this.inPlace = inPlace;
    }

    void reached(int count) {
        if (inPlace && System.nanoTime() - shownAt >= INTERVAL_NANOS) {
            System.err.print("\r" + what + ": " + count);
            shownAt = System.nanoTime();
            shown = true;
        } else if (!inPlace && count % LINE_EVERY == 0) {
            System.err.println(what + ": " + count);
        }
    }

    /** Takes the counter off the terminal again. */
    void done() {
        if (shown) {
            System.err.print("\r\033[K");
        }
    }
}
