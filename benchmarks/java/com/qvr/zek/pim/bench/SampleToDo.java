package com.qvr.zek.pim.bench;

/** The values of to-do {@code number}. Two share each due date, and the dates come in no order. */
final class SampleToDo {
    static final int COUNT = 1900;
    static final int DATES = COUNT / 2;

    private static final long FIRST_DUE_MS = 1_700_000_000_000L;
    private static final long HOUR_MS = 3_600_000L;
    private static final int STRIDE = 367; // Shares no divisor with the number of dates.

    final String summary;
    final String note;
    final long due;

    SampleToDo(int number) {
        summary = "To do " + number;
        note = "A note about to-do " + number + ".";
        due = due(number * STRIDE % DATES);
    }

    /** The due date at a place in their order. */
    static long due(int place) {
        return FIRST_DUE_MS + place * HOUR_MS;
    }
}
