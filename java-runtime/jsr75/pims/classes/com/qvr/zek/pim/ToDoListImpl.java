package com.qvr.zek.pim;

/** What is special about the list of to-dos. */
public class ToDoListImpl {
    static {
        NativeLibrary.load();
    }

    /**
     * The record indexes of all to-dos that share the earliest date later than {@code currentDate}; empty when there
     * is none and on failure.
     *
     * @param field the date field to go by
     * @param currentDate in milliseconds since 1970-01-01 UTC
     */
    public native int[] nextSortedToDoN(int handle, int field, long currentDate);
}
