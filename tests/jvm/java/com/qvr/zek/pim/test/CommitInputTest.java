package com.qvr.zek.pim.test;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.qvr.zek.pim.CommitRequest;
import com.qvr.zek.pim.PIMCodes.Contact;
import javax.microedition.pim.PIMException;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.ValueSource;

/** Arrays that do not hold what they claim to: nothing is read outside them. */
class CommitInputTest extends StoreTest {
    private static final String[] NO_CATEGORIES = {"0"};

    private static int commit(int[] stringids, byte[][] strings, long[] longs) throws PIMException {
        return ITEMS.commitN(CONTACT, 0, -1, stringids, strings, new int[0], new byte[0], longs, NO_CATEGORIES, 0);
    }

    @Test
    void nullArraysCountAsEmpty() throws PIMException {
        for (int listtype : LIST_TYPES) {
            int recindex = ITEMS.commitN(listtype, 0, -1, null, null, null, null, null, null, 0);
            assertTrue(recindex >= 1, "list " + listtype + ": " + recindex);
            assertEquals(recindex, LISTS.nextRecordN(listtype, HANDLE, -1));
        }
    }

    @Test
    void emptyArraysHoldNoEntries() throws PIMException {
        assertTrue(commit(new int[0], new byte[0][], new long[0]) >= 1);
    }

    @ParameterizedTest
    @ValueSource(ints = {-1, 2, 1000, Integer.MAX_VALUE, Integer.MIN_VALUE})
    void aStringCountThatTheArrayDoesNotHoldIsRefused(int count) throws PIMException {
        assertEquals(-1, commit(new int[] {count, Contact.NICKNAME, 0, 0}, new byte[][] {{'a'}}, new long[] {0}));
        assertEquals(-1, LISTS.nextRecordN(CONTACT, HANDLE, -1));
    }

    @ParameterizedTest
    @ValueSource(longs = {-1, 2, 1000, Long.MAX_VALUE, Long.MIN_VALUE})
    void aLongCountThatTheArrayDoesNotHoldIsRefused(long count) throws PIMException {
        assertEquals(-1, commit(new int[] {0}, new byte[0][], new long[] {count, Contact.BIRTHDAY, 0, 0, 0}));
        assertEquals(-1, LISTS.nextRecordN(CONTACT, HANDLE, -1));
    }

    @Test
    void missingTextsCountAsNull() throws PIMException {
        int recindex = commit(new int[] {2, Contact.NICKNAME, 0, 0, Contact.ADDR, 0, 0}, new byte[][] {{'a'}},
                new long[] {0});

        assertEquals("a", text(CONTACT, recindex, Contact.NICKNAME));
        assertEquals(0, count(CONTACT, recindex, Contact.ADDR));
    }

    @Test
    void withoutACountTheCategoriesAreNotLookedAt() throws PIMException {
        LISTS.addCategoryN(CONTACT, HANDLE, "Named");
        int recindex = ITEMS.commitN(CONTACT, 0, -1, new int[] {0}, new byte[0][], new int[0], new byte[0],
                new long[] {0}, new String[] {"1", "Named"}, 0);

        assertArrayEquals(new String[0], ITEMS.getCategoriesN(CONTACT, HANDLE, recindex));
    }

    @Test
    void anUnknownListTypeStoresNothing() throws PIMException {
        assertEquals(0, ITEMS.commitN(4, 0, -1, new int[] {0}, new byte[0][], new int[0], new byte[0], new long[] {0},
                NO_CATEGORIES, 0));
    }

    @Test
    void unknownFieldsAreIgnored() {
        int recindex = add(CONTACT, new CommitRequest().string(999, "ignored").string(Contact.NICKNAME, "kept")
                .number(998, 5));
        assertEquals("kept", text(CONTACT, recindex, Contact.NICKNAME));
    }
}
