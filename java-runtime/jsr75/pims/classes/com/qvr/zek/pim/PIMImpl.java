package com.qvr.zek.pim;

/** The three lists of the device: one of contacts, one of events, one of to-dos. */
public class PIMImpl {
    static {
        NativeLibrary.load();
    }

    /**
     * Opens a list. The native side keeps no list objects, so there is nothing to fail.
     *
     * @param mode not examined
     * @return 0, also for a list type it does not know, which it reports on standard output
     */
    public native int openPIMListN(int listtype, int mode);

    /** The names of the lists of a type: always exactly one, empty for a list type it does not know. */
    public native String[] listPIMListsN(int listtype);
}
