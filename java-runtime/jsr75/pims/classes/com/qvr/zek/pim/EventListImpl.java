package com.qvr.zek.pim;

/** What is special about the list of events. */
public class EventListImpl {
    static {
        NativeLibrary.load();
    }

    /**
     * As many ints as there are events that share the earliest start later than {@code after}, which is in
     * milliseconds since 1970-01-01 UTC. The ints themselves are not dependable; they are mostly 0.
     */
    public native int[] nextSortedEventN(int handle, long after);

    /** The supported repeat frequencies, in {@link PIMCodes.RepeatFrequency} codes. */
    public native int[] getSupportedRepeatRuleFrequenciesN();

    /** The combinations of repeat-rule fields that a frequency supports, as bit masks; a single 0 when none. */
    public native int[] getSupportedRepeatRuleFieldsN(int frequency);
}
