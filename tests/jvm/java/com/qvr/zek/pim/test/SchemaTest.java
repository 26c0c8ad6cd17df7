package com.qvr.zek.pim.test;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertNull;

import org.junit.jupiter.api.Test;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;
import org.junit.jupiter.params.provider.ValueSource;

/** Written in numbers throughout: these are the codes that cross to Java. */
class SchemaTest extends StoreTest {
    private static final int EXTENDED = 0x1000000;
    private static final int[] NONE = {};

    @Test
    void supportedFieldsComeInTheOrderOfEachList() {
        assertArrayEquals(new int[] {100, 101, 103, 106, 107, 108, 109, 114, 115, 116, 118},
                LISTS.getSupportedFieldsN(CONTACT, HANDLE));
        assertArrayEquals(new int[] {100, 102, 103, 104, 105, 106, 107}, LISTS.getSupportedFieldsN(EVENT, HANDLE));
        assertArrayEquals(new int[] {101, 102, 103, 104, 105, 106, 107}, LISTS.getSupportedFieldsN(TODO, HANDLE));
        assertNull(LISTS.getSupportedFieldsN(0, HANDLE));
        assertNull(LISTS.getSupportedFieldsN(4, HANDLE));
    }

    @ParameterizedTest
    @CsvSource({"1,100,5", "1,118,5", "1,103,15", "1,115,15", "1,106,1", "1,110,1", "2,100,1", "2,999,1", "3,101,1",
        "3,118,1", "0,100,-1", "4,100,-1"})
    void maximumNumberOfValues(int listtype, int field, int maximum) {
        assertEquals(maximum, LISTS.maxValuesN(listtype, HANDLE, field));
    }

    @Test
    void onlyFourContactFieldsHaveAttributes() {
        assertArrayEquals(new int[] {8, 512}, LISTS.getSupportedAttributesN(CONTACT, HANDLE, 100));
        assertArrayEquals(new int[] {EXTENDED + 8, EXTENDED + 9}, LISTS.getSupportedAttributesN(CONTACT, HANDLE, 103));
        assertArrayEquals(new int[] {EXTENDED + 1, EXTENDED + 2, EXTENDED + 3, EXTENDED + 4, 8, 512, EXTENDED + 5, 4,
            EXTENDED + 6, EXTENDED + 7, 1, 64, 32}, LISTS.getSupportedAttributesN(CONTACT, HANDLE, 115));
        assertArrayEquals(new int[] {EXTENDED + 10, EXTENDED + 11}, LISTS.getSupportedAttributesN(CONTACT, HANDLE, 118));
        for (int field : new int[] {99, 101, 102, 104, 105, 106, 107, 108, 109, 110, 114, 116, 117, 119}) {
            assertArrayEquals(NONE, LISTS.getSupportedAttributesN(CONTACT, HANDLE, field), "field " + field);
        }
        assertArrayEquals(NONE, LISTS.getSupportedAttributesN(EVENT, HANDLE, 115));
        assertArrayEquals(NONE, LISTS.getSupportedAttributesN(TODO, HANDLE, 100));
        assertArrayEquals(NONE, LISTS.getSupportedAttributesN(4, HANDLE, 100));
    }

    @Test
    void allAttributesOfTheContactList() {
        assertArrayEquals(new int[] {EXTENDED + 1, EXTENDED + 2, EXTENDED + 3, EXTENDED + 4, 8, 512, EXTENDED + 5, 4,
            EXTENDED + 6, EXTENDED + 7, 1, 64, 32, EXTENDED + 8, EXTENDED + 9, EXTENDED + 10, EXTENDED + 11},
                LISTS.getAllSupportedAttributesN(CONTACT, HANDLE));
        assertArrayEquals(NONE, LISTS.getAllSupportedAttributesN(EVENT, HANDLE));
        assertArrayEquals(NONE, LISTS.getAllSupportedAttributesN(TODO, HANDLE));
        assertArrayEquals(NONE, LISTS.getAllSupportedAttributesN(0, HANDLE));
    }

    @Test
    void arrayElementsOfAddressAndName() {
        assertArrayEquals(new int[] {0, 1, 2, 3, 4, 5, 6}, LISTS.getSupportedArrayElementsN(CONTACT, HANDLE, 100));
        assertArrayEquals(new int[] {0, 1}, LISTS.getSupportedArrayElementsN(CONTACT, HANDLE, 106));
        assertArrayEquals(NONE, LISTS.getSupportedArrayElementsN(CONTACT, HANDLE, 115));
    }

    @Test
    void arrayElementsOfTheOtherListsAreZeros() {
        assertArrayEquals(new int[7], LISTS.getSupportedArrayElementsN(EVENT, HANDLE, 100));
        assertArrayEquals(new int[2], LISTS.getSupportedArrayElementsN(TODO, HANDLE, 106));
        assertArrayEquals(NONE, LISTS.getSupportedArrayElementsN(EVENT, HANDLE, 107));
    }

    @Test
    void extendedFieldsNameTheLastContactFieldTwice() {
        assertArrayEquals(new int[] {EXTENDED, EXTENDED + 1, EXTENDED + 2, EXTENDED + 3, EXTENDED + 4, EXTENDED + 4},
                LISTS.getExtendedFieldsN(CONTACT, HANDLE));
        assertArrayEquals(new int[] {EXTENDED}, LISTS.getExtendedFieldsN(EVENT, HANDLE));
        assertArrayEquals(new int[] {EXTENDED, EXTENDED + 1}, LISTS.getExtendedFieldsN(TODO, HANDLE));
        assertNull(LISTS.getExtendedFieldsN(0, HANDLE));
        assertNull(LISTS.getExtendedFieldsN(4, HANDLE));
    }

    @ParameterizedTest
    @ValueSource(ints = {0, 1, 2, 3, 4})
    void extendedFieldsHaveNoTypeAndNoElements(int listtype) {
        assertEquals(-1, LISTS.getExtendedFieldDataTypeN(listtype, HANDLE));
        assertEquals(0, LISTS.extendedStringArraySizeN(listtype, HANDLE));
    }

    @ParameterizedTest
    @CsvSource({"1,100,Address", "1,101,Birthday", "1,103,E-mail", "1,106,Name", "1,107,Nick name", "1,108,Note",
        "1,109,Company", "1,114,Version", "1,115,Tel", "1,116,Job title", "1,118,Homepage", "2,100,Alarm", "2,102,End",
        "2,103,Location", "2,104,Note", "2,105,Version", "2,106,Start", "2,107,Subject", "3,101,Status",
        "3,102,Completed on", "3,103,Due", "3,104,Note", "3,105,Priority", "3,106,Version", "3,107,Subject"})
    void fieldLabels(int listtype, int field, String label) {
        assertEquals(label, LISTS.getFieldLabelN(listtype, HANDLE, field));
    }

    @ParameterizedTest
    @CsvSource({"1,110", "1,102", "1,117", "1,99", "1,119", "1,16777216", "2,101", "2,108", "3,100", "3,108", "0,100",
        "4,100"})
    void unsupportedFieldsHaveNoLabel(int listtype, int field) {
        assertNull(LISTS.getFieldLabelN(listtype, HANDLE, field));
    }

    @ParameterizedTest
    @CsvSource({"1,Assistant", "2,Car", "4,Fax", "8,Home", "12,Home fax", "16,Mobile", "32,Other", "64,Pager",
        "256,SMS", "512,Work", "516,Work fax", "0x1000001,Mobile private", "0x1000002,Mobile business",
        "0x1000003,Line private", "0x1000004,Line business", "0x1000005,Video call", "0x1000006,Voice mail",
        "0x1000007,Sim", "0x1000008,Email Private", "0x1000009,Email Business", "0x100000a,Homepage Private",
        "0x100000b,Homepage Business"})
    void attributeLabels(String attribute, String label) {
        assertEquals(label, LISTS.getAttributeLabelN(CONTACT, HANDLE, Integer.decode(attribute)));
    }

    @ParameterizedTest
    @CsvSource({"1,6", "1,0", "1,128", "1,520", "1,-1", "1,0x100000c", "2,8", "3,8", "0,8"})
    void otherAttributesHaveAnEmptyLabel(int listtype, String attribute) {
        assertEquals("", LISTS.getAttributeLabelN(listtype, HANDLE, Integer.decode(attribute)));
    }

    @ParameterizedTest
    @CsvSource({"100,0,Pobox", "100,1,extra", "100,2,Street", "100,3,City", "100,4,State", "100,5,Zip",
        "100,6,Country", "106,0,Last", "106,1,First"})
    void elementLabels(int field, int element, String label) {
        assertEquals(label, LISTS.getArrayElementLabelN(CONTACT, HANDLE, field, element));
    }

    @ParameterizedTest
    @CsvSource({"1,106,2", "1,100,7", "1,100,-1", "1,115,0", "2,106,0", "3,100,0", "4,100,0"})
    void otherElementsHaveAnEmptyLabel(int listtype, int field, int element) {
        assertEquals("", LISTS.getArrayElementLabelN(listtype, HANDLE, field, element));
    }
}
