package com.qvr.zek.pim.bench;

/** What no native can do without: the call itself, and a time's way to seconds. */
final class Floor {
    static {
        System.loadLibrary("pimfloor");
    }

    /** Nothing but the call, in the shape of a walk step. Returns {@code recindex}. */
    native int emptyN(int listtype, int handle, int recindex);

    /** The sum of the seconds of {@code times}, each one the nine words of mktime(). */
    native long mktimesN(int[] times);
}
