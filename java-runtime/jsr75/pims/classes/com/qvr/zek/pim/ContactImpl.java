package com.qvr.zek.pim;

/** What is special about one contact. */
public class ContactImpl {
    static {
        NativeLibrary.load();
    }

    /**
     * The position of the preferred value of a field: the first home address, private e-mail, private mobile phone
     * or private home page. -1 when there is none. Writes two lines to standard output.
     */
    public native int getPreferredIndexN(int handle, int recindex, int field);
}
