package com.qvr.zek.pim;

/** The repeat rule of one stored event; fields are named by {@link PIMCodes.RepeatField} codes. */
public class EventImpl {
    static {
        NativeLibrary.load();
    }

    /**
     * The frequency (-1 for an event that does not repeat), the interval, or another int of the rule; -1 when the
     * store cannot be reached, 0 when there is no such event.
     */
    public native int getRepeatIntN(int handle, int recindex, int field);

    /** The end of the rule in seconds (not milliseconds) since 1970-01-01 UTC; -1 when it has none. */
    public native long getRepeatDateN(int handle, int recindex, int field);

    /** The fields of the rule; empty for an event that does not repeat and on failure. */
    public native int[] getRepeatFieldsN(int handle, int recindex);

    /** Always empty: exception dates are not stored. */
    public native long[] getRepeatExceptDatesN(int handle, int recindex);
}
