package com.qvr.zek.pim;

import java.io.ByteArrayOutputStream;
import java.util.ArrayList;
import java.util.List;
import javax.microedition.pim.PIMException;

/** Collects the values of one item and hands them to {@link PIMItemImpl#commitN} in the arrays it expects. */
public final class CommitRequest {
    private final List<int[]> stringEntries = new ArrayList<int[]>();
    private final List<byte[]> texts = new ArrayList<byte[]>();
    private final List<long[]> longEntries = new ArrayList<long[]>();
    private final List<String> categories = new ArrayList<String>();

    /** Adds one value of a string field, or of a string-array field when several texts are given; texts may be null. */
    public CommitRequest string(int field, int index, int attribute, String... elements) {
        stringEntries.add(new int[] {field, index, attribute});
        for (String element : elements) {
            texts.add(element == null ? null : modifiedUtf8(element));
        }
        return this;
    }

    /** Adds the only value of a string field without attributes. */
    public CommitRequest string(int field, String text) {
        return string(field, 0, 0, text);
    }

    /** Adds a date (milliseconds since 1970-01-01 UTC), an int, a boolean (1 or 0) or a part of a repeat rule. */
    public CommitRequest number(int field, long value) {
        longEntries.add(new long[] {field, 0, 0, value});
        return this;
    }

    /** Puts the contact into a category, which the list must already have. */
    public CommitRequest category(String name) {
        categories.add(name);
        return this;
    }

    /**
     * Stores the item.
     *
     * @param recindex the record to update, or {@link PIMCodes#NO_RECORD} for a new one
     * @return the record index, or -1 when the item was refused
     * @throws PIMException when memory runs out
     */
    public int commit(PIMItemImpl item, int listtype, int recindex) throws PIMException {
        return item.commitN(listtype, 0, recindex, stringIds(), texts.toArray(new byte[0][]), new int[0], new byte[0],
                longs(), countedCategories(), categories.size());
    }

    /**
     * The bytes of a text in modified UTF-8: characters outside the basic plane are two surrogates of three bytes
     * each, which is what JNI makes the same string of again. U+0000 cannot be kept and is left out.
     */
    public static byte[] modifiedUtf8(String text) {
        ByteArrayOutputStream bytes = new ByteArrayOutputStream(text.length());
        for (int i = 0; i < text.length(); i++) {
            char unit = text.charAt(i);
            if (unit == 0) {
                continue;
            }
            if (unit < 0x80) {
                bytes.write(unit);
            } else if (unit < 0x800) {
                bytes.write(0xc0 | unit >> 6);
                bytes.write(0x80 | unit & 0x3f);
            } else {
                bytes.write(0xe0 | unit >> 12);
                bytes.write(0x80 | unit >> 6 & 0x3f);
                bytes.write(0x80 | unit & 0x3f);
            }
        }
        return bytes.toByteArray();
    }

    private int[] stringIds() {
        int[] ids = new int[1 + 3 * stringEntries.size()];
        ids[0] = stringEntries.size();
        int next = 1;
        for (int[] entry : stringEntries) {
            System.arraycopy(entry, 0, ids, next, entry.length);
            next += entry.length;
        }
        return ids;
    }

    private long[] longs() {
        long[] longs = new long[1 + 4 * longEntries.size()];
        longs[0] = longEntries.size();
        int next = 1;
        for (long[] entry : longEntries) {
            System.arraycopy(entry, 0, longs, next, entry.length);
            next += entry.length;
        }
        return longs;
    }

    private String[] countedCategories() {
        String[] counted = new String[1 + categories.size()];
        counted[0] = Integer.toString(categories.size());
        for (int i = 0; i < categories.size(); i++) {
            counted[i + 1] = categories.get(i);
        }
        return counted;
    }
}
