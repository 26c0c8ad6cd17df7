package com.qvr.zek.pim.test;

import static com.qvr.zek.pim.PIMCodes.Contact.*;
import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertNotEquals;
import static org.junit.jupiter.api.Assertions.assertNull;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.qvr.zek.pim.CommitRequest;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;
import org.junit.jupiter.params.provider.ValueSource;

class ContactTest extends StoreTest {
    private static final int REFUSED = -1;

    /** Latin with marks, Greek, Cyrillic, Arabic, Devanagari, Han, and characters outside the basic plane. */
    private static final String MANY_SCRIPTS =
            "\u00c5\u00df\u0142 \u03a9\u03bc \u0416\u044f \u0644\u064a \u0905\u0928 \u5c71\u7530 \ud83d\ude80\ud842\udfb7";

    private static String[] address(int recindex, int index) {
        return ITEMS.getStringArrayN(CONTACT, HANDLE, recindex, ADDR, index);
    }

    private static String[] name(int recindex) {
        return ITEMS.getStringArrayN(CONTACT, HANDLE, recindex, NAME, 0);
    }

    private static int attribute(int recindex, int field, int index) {
        return ITEMS.getAttributesN(CONTACT, HANDLE, recindex, field, index);
    }

    private static CommitRequest everything() {
        return new CommitRequest()
                .string(NAME, 0, 0, "Lovelace", "Ada")
                .string(NICKNAME, "Countess")
                .string(ORG, "Analytical Engines")
                .string(TITLE, "Programmer")
                .string(NOTE, "First line\nSecond line")
                .string(TEL, 0, ATTR_WORK, "+44 1")
                .string(TEL, 1, ATTR_MOBILE_PRIVATE, "+44 2")
                .string(EMAIL, 0, ATTR_EMAIL_BUSINESS, "ada@work.example.com")
                .string(EMAIL, 1, ATTR_EMAIL_PRIVATE, "ada@example.org")
                .string(ADDR, 0, ATTR_WORK, "PO 1", "Floor 2", "St James's Square 12", "London", "Greater London",
                        "SW1Y", "England")
                .string(ADDR, 1, ATTR_HOME, "", "", "Ockham Park", "Ockham", "Surrey", "", "")
                .string(URL, 0, ATTR_HOMEPAGE_BUSINESS, "https://work.example.com/")
                .string(URL, 4, ATTR_HOMEPAGE_PRIVATE, "https://ada.example.org/")
                .number(BIRTHDAY, 86_400_000L)
                .number(REVISION, 1_600_000_000_000L);
    }

    @Test
    void everyFieldComesBackAsItWasCommitted() {
        int ada = add(CONTACT, everything());

        assertArrayEquals(new String[] {"Lovelace", "Ada"}, name(ada));
        assertEquals("Countess", text(CONTACT, ada, NICKNAME));
        assertEquals("Analytical Engines", text(CONTACT, ada, ORG));
        assertEquals("Programmer", text(CONTACT, ada, TITLE));
        assertEquals("First line\nSecond line", text(CONTACT, ada, NOTE));
        assertEquals("+44 1", text(CONTACT, ada, TEL, 0));
        assertEquals("+44 2", text(CONTACT, ada, TEL, 1));
        assertEquals("ada@work.example.com", text(CONTACT, ada, EMAIL, 0));
        assertEquals("ada@example.org", text(CONTACT, ada, EMAIL, 1));
        assertArrayEquals(new String[] {"PO 1", "Floor 2", "St James's Square 12", "London", "Greater London", "SW1Y",
            "England"}, address(ada, 0));
        assertArrayEquals(new String[] {"", "", "Ockham Park", "Ockham", "Surrey", "", ""}, address(ada, 1));
        assertEquals("https://work.example.com/", text(CONTACT, ada, URL, 0));
        assertEquals("", text(CONTACT, ada, URL, 1));
        assertEquals("https://ada.example.org/", text(CONTACT, ada, URL, 4));
        assertEquals(86_400_000L, date(CONTACT, ada, BIRTHDAY));
        assertEquals(1_600_000_000_000L, date(CONTACT, ada, REVISION));
    }

    @Test
    void countsAndFieldListFollowWhatIsStored() {
        int ada = add(CONTACT, everything());

        assertEquals(2, count(CONTACT, ada, ADDR));
        assertEquals(1, count(CONTACT, ada, BIRTHDAY));
        assertEquals(2, count(CONTACT, ada, EMAIL));
        assertEquals(1, count(CONTACT, ada, NAME));
        assertEquals(1, count(CONTACT, ada, NICKNAME));
        assertEquals(1, count(CONTACT, ada, NOTE));
        assertEquals(1, count(CONTACT, ada, ORG));
        assertEquals(1, count(CONTACT, ada, REVISION));
        assertEquals(2, count(CONTACT, ada, TEL));
        assertEquals(1, count(CONTACT, ada, TITLE));
        assertEquals(2, count(CONTACT, ada, URL));
        assertEquals(0, count(CONTACT, ada, PHOTO));
        assertArrayEquals(new int[] {ADDR, NAME, EMAIL, NICKNAME, NOTE, ORG, TEL, TITLE, URL, BIRTHDAY, REVISION},
                ITEMS.getFieldsN(CONTACT, HANDLE, ada));
    }

    @Test
    void absentFieldsReadAsNothing() {
        int bare = addContact("Bare", "");

        assertArrayEquals(new String[] {"Bare", ""}, name(bare));
        for (int field : new int[] {NICKNAME, ORG, TITLE, NOTE, TEL, EMAIL, URL, PHOTO_URL}) {
            assertEquals("", text(CONTACT, bare, field), "field " + field);
            assertEquals(0, count(CONTACT, bare, field), "field " + field);
        }
        assertArrayEquals(new String[] {"", "", "", "", "", "", ""}, address(bare, 0));
        assertEquals(-1000, date(CONTACT, bare, BIRTHDAY));
        assertArrayEquals(new int[] {NAME, REVISION}, ITEMS.getFieldsN(CONTACT, HANDLE, bare));
    }

    @Test
    void aRecordThatIsNotThereReadsAsNothing() {
        assertNull(text(CONTACT, NO_SUCH_RECORD, NICKNAME));
        assertArrayEquals(new String[] {"", ""}, name(NO_SUCH_RECORD));
        assertEquals(0, date(CONTACT, NO_SUCH_RECORD, BIRTHDAY));
        assertEquals(0, count(CONTACT, NO_SUCH_RECORD, NAME));
        assertNull(ITEMS.getFieldsN(CONTACT, HANDLE, NO_SUCH_RECORD));
        assertEquals(0, attribute(NO_SUCH_RECORD, TEL, 0));
        assertEquals(-1, CONTACTS.getPreferredIndexN(HANDLE, NO_SUCH_RECORD, TEL));
        assertEquals(1, ITEMS.isRecordDeletedN(CONTACT, HANDLE, NO_SUCH_RECORD));
        assertArrayEquals(new String[0], ITEMS.getCategoriesN(CONTACT, HANDLE, NO_SUCH_RECORD));
    }

    @Test
    void contactsHaveNoIntsAndNoBooleans() {
        int ada = add(CONTACT, everything());

        assertEquals(0, ITEMS.getIntN(CONTACT, HANDLE, ada, TEL, 0));
        assertFalse(ITEMS.getBooleanN(CONTACT, HANDLE, ada, NAME, 0));
        assertFalse(ITEMS.getBooleanN(CONTACT, HANDLE, NO_SUCH_RECORD, NAME, 0));
    }

    @Test
    void onlyAddressAndNameAreStringArrays() {
        int ada = add(CONTACT, everything());

        assertNull(ITEMS.getStringArrayN(CONTACT, HANDLE, ada, TEL, 0));
        assertNull(ITEMS.getStringArrayN(EVENT, HANDLE, ada, ADDR, 0));
        assertNull(ITEMS.getStringArrayN(TODO, HANDLE, ada, NAME, 0));
        assertEquals("", text(CONTACT, ada, NAME));
    }

    @Test
    void unknownListTypesReadAsNothing() {
        int ada = add(CONTACT, everything());

        for (int listtype : new int[] {0, 4, -1}) {
            assertNull(text(listtype, ada, NICKNAME));
            assertEquals(0, date(listtype, ada, BIRTHDAY));
            assertEquals(0, ITEMS.getIntN(listtype, HANDLE, ada, TEL, 0));
            assertFalse(ITEMS.getBooleanN(listtype, HANDLE, ada, TEL, 0));
            assertEquals(0, count(listtype, ada, NAME));
            assertNull(ITEMS.getFieldsN(listtype, HANDLE, ada));
            assertEquals(0, ITEMS.isRecordDeletedN(listtype, HANDLE, ada));
        }
    }

    @ParameterizedTest
    @ValueSource(ints = {ATTR_MOBILE_PRIVATE, ATTR_MOBILE_BUSINESS, ATTR_LINE_PRIVATE, ATTR_LINE_BUSINESS, ATTR_HOME,
        ATTR_WORK, ATTR_VIDEO_CALL, ATTR_FAX, ATTR_VOICE_MAIL, ATTR_SIM, ATTR_ASST, ATTR_PAGER, ATTR_OTHER})
    void everyPhoneAttributeIsKept(int attribute) {
        int recindex = add(CONTACT, new CommitRequest().string(TEL, 0, attribute, "1"));
        assertEquals(attribute, attribute(recindex, TEL, 0));
    }

    @ParameterizedTest
    @ValueSource(ints = {0, ATTR_AUTO, ATTR_MOBILE, ATTR_PREFERRED, ATTR_SMS, ATTR_HOME | ATTR_FAX, ATTR_EMAIL_PRIVATE})
    void otherPhoneAttributesAreDropped(int attribute) {
        int recindex = add(CONTACT, new CommitRequest().string(TEL, 0, attribute, "1"));
        assertEquals(0, attribute(recindex, TEL, 0));
    }

    @Test
    void attributesOfTheOtherFields() {
        int ada = add(CONTACT, everything());

        assertEquals(ATTR_EMAIL_BUSINESS, attribute(ada, EMAIL, 0));
        assertEquals(ATTR_EMAIL_PRIVATE, attribute(ada, EMAIL, 1));
        assertEquals(ATTR_WORK, attribute(ada, ADDR, 0));
        assertEquals(ATTR_HOME, attribute(ada, ADDR, 1));
        assertEquals(ATTR_HOMEPAGE_BUSINESS, attribute(ada, URL, 0));
        assertEquals(ATTR_HOMEPAGE_PRIVATE, attribute(ada, URL, 4));
        assertEquals(0, attribute(ada, NAME, 0));
    }

    @Test
    void anEmailIndexOutOfRangeHasThePrivateAttributeAndAPhoneIndexNone() {
        int bare = addContact("Bare", "");

        assertEquals(ATTR_EMAIL_PRIVATE, attribute(bare, EMAIL, 0));
        assertEquals(0, attribute(bare, TEL, 0));
        assertEquals(0, attribute(bare, ADDR, 0));
    }

    @Test
    void thePreferredValueIsTheFirstOfTheFirstKind() {
        int ada = add(CONTACT, everything());

        assertEquals(1, CONTACTS.getPreferredIndexN(HANDLE, ada, TEL));
        assertEquals(1, CONTACTS.getPreferredIndexN(HANDLE, ada, EMAIL));
        assertEquals(1, CONTACTS.getPreferredIndexN(HANDLE, ada, ADDR));
        assertEquals(-1, CONTACTS.getPreferredIndexN(HANDLE, ada, NAME));
        int withoutPhone = addContact("No", "Phone");
        assertEquals(-1, CONTACTS.getPreferredIndexN(HANDLE, withoutPhone, TEL));
    }

    @Test
    void textsOfManyScriptsComeBackUnchanged() {
        int recindex = add(CONTACT, new CommitRequest()
                .string(NAME, 0, 0, MANY_SCRIPTS.substring(0, 12), "\ud83d\ude80")
                .string(NOTE, MANY_SCRIPTS)
                .string(NICKNAME, MANY_SCRIPTS)
                .string(ADDR, 0, ATTR_HOME, "", "", MANY_SCRIPTS, "", "", "", ""));

        assertArrayEquals(new String[] {MANY_SCRIPTS.substring(0, 12), "\ud83d\ude80"}, name(recindex));
        assertEquals(MANY_SCRIPTS, text(CONTACT, recindex, NOTE));
        assertEquals(MANY_SCRIPTS, text(CONTACT, recindex, NICKNAME));
        assertEquals(MANY_SCRIPTS, address(recindex, 0)[ADDR_STREET]);
    }

    @ParameterizedTest
    @CsvSource({"103,129", "107,196", "109,65", "116,65", "115,41", "118,257"})
    void aTextAtItsLimitIsTakenAndOneByteMoreIsRefused(int field, int limit) {
        int recindex = add(CONTACT, new CommitRequest().string(field, repeat('x', limit)));
        assertEquals(repeat('x', limit), text(CONTACT, recindex, field));

        assertEquals(REFUSED, commit(CONTACT, -1, new CommitRequest().string(field, repeat('x', limit + 1))));
        assertEquals(1, records(CONTACT).size());
    }

    @Test
    void aNameOfSixtyFiveBytesIsTakenButReadsAsEmpty() {
        int recindex = addContact(repeat('f', 65), repeat('g', 64));
        assertArrayEquals(new String[] {"", repeat('g', 64)}, name(recindex));

        assertEquals(REFUSED, commit(CONTACT, -1, contact(repeat('f', 66), "")));
        assertEquals(REFUSED, commit(CONTACT, -1, contact("", repeat('g', 66))));
    }

    @ParameterizedTest
    @CsvSource({"0,65", "1,129", "2,129", "3,129", "4,129", "5,41", "6,65"})
    void anAddressPartOverItsLimitRefusesTheContact(int element, int limit) {
        String[] parts = new String[7];
        parts[element] = repeat('x', limit);
        add(CONTACT, new CommitRequest().string(ADDR, 0, ATTR_HOME, parts));

        parts[element] = repeat('x', limit + 1);
        assertEquals(REFUSED, commit(CONTACT, -1, new CommitRequest().string(ADDR, 0, ATTR_HOME, parts)));
    }

    @ParameterizedTest
    @CsvSource({"2,129,1", "5,41,4", "6,65,0"})
    void anAddressPartAtItsLimitEmptiesTheOneThatFollowsItInTheRecord(int element, int limit, int emptied) {
        String[] parts = {"a", "b", "c", "d", "e", "f", "g"};
        parts[element] = repeat('x', limit);
        int recindex = add(CONTACT, new CommitRequest().string(ADDR, 0, ATTR_HOME, parts));

        String[] stored = address(recindex, 0);
        assertEquals("", stored[emptied]);
        // A part of 129 bytes is too long to be read back.
        assertEquals(limit < 129 ? parts[element] : "", stored[element]);
    }

    @Test
    void aLongNoteIsKeptAndReadUpTo1023BytesAtACharacterBoundary() {
        int exact = add(CONTACT, new CommitRequest().string(NOTE, repeat('n', 1023)));
        assertEquals(repeat('n', 1023), text(CONTACT, exact, NOTE));

        int cut = add(CONTACT, new CommitRequest().string(NOTE, repeat('n', 1022) + "\u00e9 and more"));
        assertEquals(repeat('n', 1022), text(CONTACT, cut, NOTE));

        int found = LISTS.nextRecordWithMatchStrN(CONTACT, HANDLE, exact, "and more");
        assertEquals(cut, found);
    }

    @Test
    void anEmptyAddressIsDroppedAndTakesNoPlace() {
        int recindex = add(CONTACT, new CommitRequest()
                .string(ADDR, 0, ATTR_HOME, "", null, "", "", "", "", "")
                .string(ADDR, 1, ATTR_WORK, "", "", "Street", "", "", "", "")
                .string(NICKNAME, "After"));

        assertEquals(1, count(CONTACT, recindex, ADDR));
        assertEquals("Street", address(recindex, 0)[ADDR_STREET]);
        assertEquals("After", text(CONTACT, recindex, NICKNAME));
    }

    @Test
    void aPostalCodeAloneIsStoredButNotCounted() {
        int recindex = add(CONTACT, new CommitRequest().string(ADDR, 0, 0, "", "", "", "", "", "12345", ""));

        assertEquals(0, count(CONTACT, recindex, ADDR));
        assertEquals("12345", address(recindex, 0)[ADDR_POSTALCODE]);
    }

    @Test
    void valuesBeyondTheCapacityAreDropped() {
        CommitRequest request = new CommitRequest();
        for (int i = 0; i < 16; i++) {
            request.string(TEL, i, ATTR_HOME, "tel" + i);
            request.string(EMAIL, i, ATTR_EMAIL_PRIVATE, "mail" + i);
        }
        for (int i = 0; i < 6; i++) {
            request.string(ADDR, i, ATTR_HOME, "", "", "street" + i, "", "", "", "");
        }
        int recindex = add(CONTACT, request);

        assertEquals(15, count(CONTACT, recindex, TEL));
        assertEquals("tel14", text(CONTACT, recindex, TEL, 14));
        assertEquals("", text(CONTACT, recindex, TEL, 15));
        assertEquals(15, count(CONTACT, recindex, EMAIL));
        assertEquals("mail14", text(CONTACT, recindex, EMAIL, 14));
        assertEquals(5, count(CONTACT, recindex, ADDR));
        assertEquals("street4", address(recindex, 4)[ADDR_STREET]);
    }

    @ParameterizedTest
    @ValueSource(ints = {-1, 5, Integer.MAX_VALUE, Integer.MIN_VALUE})
    void aHomePageOutsideTheFiveSlotsRefusesTheContact(int slot) {
        assertEquals(REFUSED, commit(CONTACT, -1,
                new CommitRequest().string(URL, slot, ATTR_HOMEPAGE_PRIVATE, "https://example.org/")));
        assertEquals(-1, LISTS.nextRecordN(CONTACT, HANDLE, -1));
    }

    @ParameterizedTest
    @ValueSource(ints = {-1, 100, Integer.MAX_VALUE, Integer.MIN_VALUE})
    void anIndexThatHoldsNoValueReadsAsEmpty(int index) {
        int ada = add(CONTACT, everything());

        for (int field : new int[] {TEL, EMAIL, URL}) {
            assertEquals("", text(CONTACT, ada, field, index), "field " + field);
        }
        assertArrayEquals(new String[] {"", "", "", "", "", "", ""}, address(ada, index));
        assertEquals(0, attribute(ada, TEL, Integer.MAX_VALUE));
    }

    @Test
    void theIndexOnePastTheLastPhoneIsReadableAndEmpty() {
        int ada = add(CONTACT, everything());
        assertEquals("", text(CONTACT, ada, TEL, 2));
        assertEquals("", text(CONTACT, ada, EMAIL, 2));
        assertArrayEquals(new String[] {"", "", "", "", "", "", ""}, address(ada, 2));
    }

    @Test
    void anUpdateAppendsPhonesAndReplacesSingleValues() {
        int ada = add(CONTACT, everything());

        int updated = commit(CONTACT, ada, new CommitRequest()
                .string(NICKNAME, "Enchantress")
                .string(TEL, 0, ATTR_FAX, "+44 3")
                .string(TEL, 1, ATTR_PAGER, "+44 4")
                .string(EMAIL, 0, ATTR_EMAIL_PRIVATE, "third@example.org")
                .string(ADDR, 0, ATTR_HOME, "", "", "Third", "", "", "", ""));

        assertEquals(ada, updated);
        assertEquals(4, count(CONTACT, ada, TEL));
        assertEquals("+44 1", text(CONTACT, ada, TEL, 0));
        assertEquals("+44 4", text(CONTACT, ada, TEL, 3));
        assertEquals(ATTR_PAGER, attribute(ada, TEL, 3));
        assertEquals(3, count(CONTACT, ada, EMAIL));
        assertEquals(3, count(CONTACT, ada, ADDR));
        assertEquals("Enchantress", text(CONTACT, ada, NICKNAME));
        assertArrayEquals(new String[] {"Lovelace", "Ada"}, name(ada));
        assertEquals("Programmer", text(CONTACT, ada, TITLE));
        assertEquals(86_400_000L, date(CONTACT, ada, BIRTHDAY));
    }

    @Test
    void anUpdateOfARecordThatIsNotThereIsRefused() {
        assertEquals(REFUSED, commit(CONTACT, NO_SUCH_RECORD, contact("No", "One")));
    }

    @Test
    void aNullFamilyNameLeavesTheNextTextAtTheGivenName() {
        int recindex = add(CONTACT, new CommitRequest()
                .string(NAME, 0, 0, null, "Given")
                .string(NICKNAME, "never read"));

        assertArrayEquals(new String[] {"", "Given"}, name(recindex));
        // Kept: the name took one text only, so the nickname's entry begins one text early.
        assertEquals("Given", text(CONTACT, recindex, NICKNAME));
    }

    @Test
    void aNullTextIsSkipped() {
        int recindex = add(CONTACT, new CommitRequest()
                .string(TEL, 0, ATTR_HOME, (String) null)
                .string(TITLE, (String) null)
                .string(NOTE, (String) null)
                .string(NICKNAME, "Still here"));

        assertEquals(0, count(CONTACT, recindex, TEL));
        assertEquals("", text(CONTACT, recindex, TITLE));
        assertEquals("", text(CONTACT, recindex, NOTE));
        assertEquals("Still here", text(CONTACT, recindex, NICKNAME));
    }

    @Test
    void withoutARevisionTheTimeOfTheSaveIsKept() {
        long before = System.currentTimeMillis() / 1000 * 1000;
        int recindex = addContact("Now", "");
        long stamped = date(CONTACT, recindex, REVISION);

        assertTrue(stamped >= before && stamped <= System.currentTimeMillis(), stamped + " after " + before);
    }

    @Test
    void aDeletedContactIsGone() {
        int recindex = addContact("Short", "Lived");
        assertEquals(0, ITEMS.isRecordDeletedN(CONTACT, HANDLE, recindex));

        assertEquals(1, LISTS.removeItemN(CONTACT, HANDLE, recindex));

        assertEquals(1, ITEMS.isRecordDeletedN(CONTACT, HANDLE, recindex));
        assertNotEquals(recindex, LISTS.nextRecordN(CONTACT, HANDLE, -1));
    }
}
