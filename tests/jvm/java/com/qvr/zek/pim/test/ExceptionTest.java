package com.qvr.zek.pim.test;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertThrows;

import javax.microedition.pim.PIMException;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.ValueSource;

class ExceptionTest extends StoreTest {
    private static final int[] NO_STRINGS = {0};
    private static final long[] NO_LONGS = {0};

    private static PIMException commitWithCategories(String[] categories, int numcats) {
        return assertThrows(PIMException.class, () -> ITEMS.commitN(CONTACT, 0, -1, NO_STRINGS, new byte[0][],
                new int[0], new byte[0], NO_LONGS, categories, numcats));
    }

    @ParameterizedTest
    @ValueSource(ints = {0, 1, 2, 3, 4})
    void thereAreNoBinaryValues(int listtype) {
        PIMException raised = assertThrows(PIMException.class, () -> ITEMS.getBinaryN(listtype, HANDLE));
        assertEquals("No binary fields available", raised.getMessage());
    }

    @Test
    void aContactListTakesThirtyCategoriesAndAContactOne() throws PIMException {
        assertEquals(30, LISTS.maxCategoriesN(CONTACT, HANDLE));
        assertEquals(1, ITEMS.maxCategoriesN(CONTACT, HANDLE));
        assertEquals(0, LISTS.maxCategoriesN(EVENT, HANDLE));
        assertEquals(0, ITEMS.maxCategoriesN(EVENT, HANDLE));
        assertEquals(0, LISTS.maxCategoriesN(TODO, HANDLE));
        assertEquals(0, ITEMS.maxCategoriesN(TODO, HANDLE));
    }

    @ParameterizedTest
    @ValueSource(ints = {0, 4, 5, -1})
    void anUnknownListTypeHasNoCategoryLimit(int listtype) {
        for (PIMException raised : new PIMException[] {
            assertThrows(PIMException.class, () -> LISTS.maxCategoriesN(listtype, HANDLE)),
            assertThrows(PIMException.class, () -> ITEMS.maxCategoriesN(listtype, HANDLE))}) {
            assertEquals("Not supported list type", raised.getMessage());
            assertEquals(PIMException.GENERAL_ERROR, raised.getReason());
        }
    }

    @Test
    void aCategoryCountThatDisagreesRaisesAndStoresNothing() {
        for (PIMException raised : new PIMException[] {
            commitWithCategories(new String[] {"3", "a", "b"}, 2),
            commitWithCategories(new String[] {"two", "a", "b"}, 2),
            commitWithCategories(new String[] {"2", "a"}, 2),
            commitWithCategories(new String[0], 1),
            commitWithCategories(null, 1)}) {
            assertEquals("Error : numcat != categorycount", raised.getMessage());
            assertEquals(PIMException.GENERAL_ERROR, raised.getReason());
        }
        assertEquals(-1, LISTS.nextRecordN(CONTACT, HANDLE, -1));
    }
}
