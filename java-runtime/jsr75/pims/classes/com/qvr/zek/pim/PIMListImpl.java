package com.qvr.zek.pim;

/**
 * What one list can hold, and the walks over it. Every method takes the list type (see {@link PIMCodes.List}) and
 * the handle of the opened list, which the native side does not use.
 */
public class PIMListImpl {
    static {
        NativeLibrary.load();
    }

    /** Closes a list; nothing is released, since opening took nothing. */
    public native void closePIMListN(int listtype, int handle);

    // Walks. A walk starts with recindex -1; each step returns the next record index, or -1 at the end and on failure.

    /** The record after {@code recindex}; the first one again when {@code recindex} is no longer in the list. */
    public native int nextRecordN(int listtype, int handle, int recindex);

    /**
     * As {@link #nextRecordN}, over the contacts of one category. With a null category it walks the contacts that
     * are in none, and there an index that is no longer listed ends the walk.
     */
    public native int nextRecordInCategoryN(int listtype, int handle, int recindex, String category);

    /**
     * As {@link #nextRecordN}, over the records whose texts contain {@code match} (not null), with A-Z and a-z taken
     * as equal. An empty text of a record matches everything.
     */
    public native int nextRecordWithMatchStrN(int listtype, int handle, int recindex, String match);

    /**
     * Deletes a record.
     *
     * @return 1 when the store could be opened and closed, whether or not there was such a record; otherwise 0
     */
    public native int removeItemN(int listtype, int handle, int recindex);

    // What the list supports.

    /** The field codes of the list, or null for a list type it does not know. */
    public native int[] getSupportedFieldsN(int listtype, int handle);

    /** How many values a field can hold, or -1 for a list type it does not know. */
    public native int maxValuesN(int listtype, int handle, int field);

    /** The attributes that a value of {@code field} can carry; empty when there are none. */
    public native int[] getSupportedAttributesN(int listtype, int handle, int field);

    /** The attributes of all fields together; empty for lists without attributes. */
    public native int[] getAllSupportedAttributesN(int listtype, int handle);

    /** The elements of a string-array field; empty for any other field. */
    public native int[] getSupportedArrayElementsN(int listtype, int handle, int field);

    /** The codes of the extended fields, or null for a list type it does not know. */
    public native int[] getExtendedFieldsN(int listtype, int handle);

    /** Always -1: no extended field has a declared data type. */
    public native int getExtendedFieldDataTypeN(int listtype, int handle);

    /** Always 0: no extended field is a string array. */
    public native int extendedStringArraySizeN(int listtype, int handle);

    /** The English label of a field, or null when it has none. */
    public native String getFieldLabelN(int listtype, int handle, int field);

    /** The English label of an attribute value taken as a whole; empty when it has none. */
    public native String getAttributeLabelN(int listtype, int handle, int attribute);

    /** The English label of one element of a string-array field; empty when it has none. */
    public native String getArrayElementLabelN(int listtype, int handle, int field, int element);

    // Categories, which only the contact list has.

    /**
     * How many categories the list can have.
     *
     * @throws javax.microedition.pim.PIMException for a list type it does not know
     */
    public native int maxCategoriesN(int listtype, int handle) throws javax.microedition.pim.PIMException;

    /** The categories of the contact list, whatever the list type; empty when there are none and on failure. */
    public native String[] getCategoriesN(int listtype, int handle);

    /** Adds a category; a name that is null, taken, longer than 64 bytes or holds a comma changes nothing. */
    public native void addCategoryN(int listtype, int handle, String category);

    /** Renames every category called {@code currentCategory}; a null or a new name over 64 bytes changes nothing. */
    public native void renameCategoryN(int listtype, int handle, String currentCategory, String newCategory);

    /** Deletes a category and, when {@code deleteUnassignedItems} is set, every contact that is in it. */
    public native void deleteCategoryN(int listtype, int handle, String category, boolean deleteUnassignedItems);

    /** Whether there is a category of this name; also true when the store cannot be reached. */
    public native boolean isCategoryN(int listtype, int handle, String category);
}
