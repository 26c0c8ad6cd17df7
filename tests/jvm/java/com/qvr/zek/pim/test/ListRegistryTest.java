package com.qvr.zek.pim.test;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;

import org.junit.jupiter.api.Test;

class ListRegistryTest extends StoreTest {
    @Test
    void everyListTypeHasOneListWithAFixedName() {
        assertArrayEquals(new String[] {"Contacts"}, PIM.listPIMListsN(CONTACT));
        assertArrayEquals(new String[] {"Calendar"}, PIM.listPIMListsN(EVENT));
        assertArrayEquals(new String[] {"Tasks"}, PIM.listPIMListsN(TODO));
    }

    @Test
    void anUnknownListTypeHasAnEmptyName() {
        assertArrayEquals(new String[] {""}, PIM.listPIMListsN(0));
        assertArrayEquals(new String[] {""}, PIM.listPIMListsN(4));
    }

    @Test
    void openingAnswersZeroForEveryListType() {
        for (int listtype = 0; listtype <= 4; listtype++) {
            assertEquals(0, PIM.openPIMListN(listtype, 1));
        }
    }

    @Test
    void openingAnUnknownListTypeSaysSoOnStandardOutputAndAKnownOneSaysNothing() throws Exception {
        assertEquals("", Child.run("open", "1").output);
        assertEquals("", Child.run("open", "3").output);
        assertEquals(":71  line, It is invalid list type\n", Child.run("open", "0").output);
        assertEquals(":71  line, It is invalid list type\n", Child.run("open", "4").output);
    }

    @Test
    void closingLeavesTheListUsable() {
        int recindex = addContact("Closed", "Twice");
        LISTS.closePIMListN(CONTACT, HANDLE);
        LISTS.closePIMListN(CONTACT, HANDLE);
        assertEquals(recindex, LISTS.nextRecordN(CONTACT, HANDLE, -1));
    }
}
