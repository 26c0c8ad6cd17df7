package com.qvr.zek.pim;

import javax.microedition.pim.PIMException;

/**
 * The values of one stored item, and storing them. Every method takes the list type (see {@link PIMCodes.List}) and
 * the handle of the opened list, which the native side does not use; {@code recindex} is the item's record index,
 * {@code index} the position of a value within its field.
 */
public class PIMItemImpl {
    static {
        NativeLibrary.load();
    }

    /** 1 when the record is gone or the store cannot be reached, otherwise 0. */
    public native int isRecordDeletedN(int listtype, int handle, int recindex);

    /**
     * Never returns: no field holds binary values.
     *
     * @throws PIMException always
     */
    public native byte[] getBinaryN(int listtype, int handle) throws PIMException;

    /** The attribute of a value; 0 for none, for fields without attributes and for a record that is not there. */
    public native int getAttributesN(int listtype, int handle, int recindex, int field, int index);

    /** A date in milliseconds since 1970-01-01 UTC; -1000 when it was never set, 0 for fields that are no dates. */
    public native long getDateN(int listtype, int handle, int recindex, int field, int index);

    /** A boolean value; false for fields that are not boolean. */
    public native boolean getBooleanN(int listtype, int handle, int recindex, int field, int index);

    /** An int value; 0 for fields that are no ints. An event's alarm is the low 32 bits of its milliseconds. */
    public native int getIntN(int listtype, int handle, int recindex, int field, int index);

    /** A text of at most 1023 bytes; empty when the field holds none, null when the record is not there. */
    public native String getStringN(int listtype, int handle, int recindex, int field, int index);

    /**
     * A contact's address (7 texts) or name (family and given), in the order of the {@link PIMCodes.Contact} element
     * codes; absent elements are empty. Null for any other field or list.
     */
    public native String[] getStringArrayN(int listtype, int handle, int recindex, int field, int index);

    /** The codes of the fields that hold a value, or null when there are none. */
    public native int[] getFieldsN(int listtype, int handle, int recindex);

    /** How many values a field holds; -1 when the store cannot be reached. */
    public native int countValuesN(int listtype, int handle, int recindex, int field);

    /**
     * How many categories an item can be in, as far as callers are told: 1 for contacts, 0 for events and to-dos.
     *
     * @throws PIMException for a list type it does not know
     */
    public native int maxCategoriesN(int listtype, int handle) throws PIMException;

    /** The categories of the contact {@code recindex}, whatever the list type; empty on failure. */
    public native String[] getCategoriesN(int listtype, int handle, int recindex);

    /**
     * Stores an item. {@link CommitRequest} builds the arrays.
     *
     * @param unused accepted and ignored
     * @param recindex the record to update; below 1 for a new one
     * @param stringids the number n of string entries, then n times: field, value index, attribute
     * @param strings the texts of those entries in modified UTF-8, in order; a null element is a null text
     * @param ints passed on, not read
     * @param bytes passed on, not read
     * @param longs the number m of long entries, then m times: field, value index, attribute, value
     * @param categories the number of names as decimal text, then the names
     * @param numcats the number of names again
     * @return the record index, 1 to 10000; -1 when the item was refused
     * @throws PIMException when {@code categories} and {@code numcats} disagree, or memory runs out
     */
    public native int commitN(int listtype, int unused, int recindex, int[] stringids, byte[][] strings, int[] ints,
            byte[] bytes, long[] longs, String[] categories, int numcats) throws PIMException;
}
