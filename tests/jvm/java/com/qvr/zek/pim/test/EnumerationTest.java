package com.qvr.zek.pim.test;

import static org.junit.jupiter.api.Assertions.assertEquals;

import com.qvr.zek.pim.CommitRequest;
import com.qvr.zek.pim.PIMCodes.Contact;
import com.qvr.zek.pim.PIMCodes.Event;
import com.qvr.zek.pim.PIMCodes.ToDo;
import java.util.Arrays;
import java.util.Collections;
import java.util.List;
import org.junit.jupiter.api.Test;

class EnumerationTest extends StoreTest {
    private static int next(int listtype, int recindex) {
        return LISTS.nextRecordN(listtype, HANDLE, recindex);
    }

    private static List<Integer> matches(int listtype, String text) {
        return walk(last -> LISTS.nextRecordWithMatchStrN(listtype, HANDLE, last, text));
    }

    /** A contact without empty texts, so that only what it contains makes it match. */
    private static CommitRequest filled(String family) {
        return contact(family, "Given").string(Contact.ORG, "Company").string(Contact.TITLE, "Title");
    }

    @Test
    void theWalkShowsEveryRecordInIndexOrderAndEnds() {
        for (int listtype : LIST_TYPES) {
            assertEquals(-1, next(listtype, -1), "list " + listtype);
        }
        int a = addContact("A", "");
        int b = addContact("B", "");
        int c = addContact("C", "");
        assertEquals(Arrays.asList(a, b, c), records(CONTACT));
        assertEquals(-1, next(CONTACT, c));
    }

    @Test
    void aRecordThatIsGoneRestartsTheWalk() {
        int a = addContact("A", "");
        int b = addContact("B", "");
        addContact("C", "");
        LISTS.removeItemN(CONTACT, HANDLE, b);
        assertEquals(a, next(CONTACT, b));
        assertEquals(a, next(CONTACT, NO_SUCH_RECORD));
    }

    @Test
    void aSingleRecordFollowsAnyOtherAndEndsTheWalkItself() {
        int only = addEvent("Only");
        assertEquals(-1, next(EVENT, only));
        assertEquals(only, next(EVENT, NO_SUCH_RECORD));
    }

    @Test
    void eventsAndToDosAreWalkedApart() {
        int event1 = addEvent("E1");
        int todo1 = addToDo("T1");
        int event2 = addEvent("E2");
        int todo2 = addToDo("T2");
        assertEquals(Arrays.asList(event1, event2), records(EVENT));
        assertEquals(Arrays.asList(todo1, todo2), records(TODO));
    }

    @Test
    void unknownListTypesHaveNoRecords() {
        addContact("A", "");
        for (int listtype : new int[] {0, 4, -1}) {
            assertEquals(-1, next(listtype, -1));
            assertEquals(-1, LISTS.nextRecordWithMatchStrN(listtype, HANDLE, -1, ""));
            assertEquals(-1, LISTS.nextRecordInCategoryN(listtype, HANDLE, -1, null));
        }
    }

    @Test
    void removingAnswersOneWhetherOrNotThereWasARecord() {
        int contact = addContact("A", "");
        int event = addEvent("E");
        int todo = addToDo("T");

        assertEquals(1, LISTS.removeItemN(CONTACT, HANDLE, NO_SUCH_RECORD));
        assertEquals(1, LISTS.removeItemN(EVENT, HANDLE, NO_SUCH_RECORD));
        assertEquals(0, LISTS.removeItemN(4, HANDLE, contact));
        assertEquals(Collections.singletonList(contact), records(CONTACT));

        // The organizer deletes by index alone: the list type only picks the store.
        assertEquals(1, LISTS.removeItemN(TODO, HANDLE, event));
        assertEquals(-1, next(EVENT, -1));
        assertEquals(Collections.singletonList(todo), records(TODO));
        assertEquals(1, LISTS.removeItemN(CONTACT, HANDLE, contact));
        assertEquals(-1, next(CONTACT, -1));
    }

    @Test
    void removalIsSeenByTheDeletedTest() {
        int event = addEvent("E");
        int todo = addToDo("T");
        assertEquals(0, ITEMS.isRecordDeletedN(EVENT, HANDLE, event));
        assertEquals(0, ITEMS.isRecordDeletedN(TODO, HANDLE, todo));
        LISTS.removeItemN(EVENT, HANDLE, event);
        LISTS.removeItemN(TODO, HANDLE, todo);
        assertEquals(1, ITEMS.isRecordDeletedN(EVENT, HANDLE, event));
        assertEquals(1, ITEMS.isRecordDeletedN(TODO, HANDLE, todo));
    }

    @Test
    void searchFindsContactsByEveryTextItTests() {
        int smith = add(CONTACT, filled("Smith"));
        int other = add(CONTACT, filled("Jones")
                .string(Contact.EMAIL, 0, 0, "smi@example.org")
                .string(Contact.TEL, 0, 0, "555 0199")
                .string(Contact.NOTE, "likes needlework")
                .string(Contact.ADDR, 0, 0, "pob", "ext", "str", "cit", "reg", "zip", "cou"));

        assertEquals(Arrays.asList(smith, other), matches(CONTACT, "SMI"));
        assertEquals(Collections.singletonList(smith), matches(CONTACT, "smiTH"));
        for (String text : new String[] {"0199", "Needle", "pob", "ext", "STR", "cit", "reg", "zip", "cou"}) {
            assertEquals(Collections.singletonList(other), matches(CONTACT, text), text);
        }
        assertEquals(Arrays.asList(smith, other), matches(CONTACT, "title"));
        assertEquals(Arrays.asList(smith, other), matches(CONTACT, "COMPANY"));
        assertEquals(Arrays.asList(smith, other), matches(CONTACT, ""));
        assertEquals(Collections.emptyList(), matches(CONTACT, "nobody has this"));
    }

    @Test
    void searchPassesOverHomePageAndNickname() {
        add(CONTACT, filled("Smith").string(Contact.URL, 0, 0, "https://needle.example.org/")
                .string(Contact.NICKNAME, "needle"));
        assertEquals(Collections.emptyList(), matches(CONTACT, "needle"));
    }

    @Test
    void anEmptyTextOfAContactMatchesEverything() {
        int nameless = add(CONTACT, contact("Family", "").string(Contact.ORG, "c").string(Contact.TITLE, "t"));
        add(CONTACT, filled("Smith"));
        assertEquals(Collections.singletonList(nameless), matches(CONTACT, "nobody has this"));
    }

    @Test
    void searchFoldsAsciiLettersOnly() {
        int recindex = add(CONTACT, filled("\u00c4rmel"));
        assertEquals(Collections.emptyList(), matches(CONTACT, "\u00e4rmel"));
        assertEquals(Collections.singletonList(recindex), matches(CONTACT, "\u00c4RMEL"));
    }

    @Test
    void searchLeavesTheCallersStringAlone() {
        add(CONTACT, filled("Smith"));
        String wanted = new String("SMITH");
        matches(CONTACT, wanted);
        assertEquals("SMITH", wanted);
    }

    @Test
    void searchNeverWrapsAroundAndRestartsAtAnUnknownIndex() {
        int first = add(CONTACT, filled("Needle"));
        int second = add(CONTACT, filled("Hay"));
        int third = add(CONTACT, filled("Straw"));

        assertEquals(-1, LISTS.nextRecordWithMatchStrN(CONTACT, HANDLE, second, "needle"));
        assertEquals(-1, LISTS.nextRecordWithMatchStrN(CONTACT, HANDLE, third, "needle"));
        assertEquals(first, LISTS.nextRecordWithMatchStrN(CONTACT, HANDLE, NO_SUCH_RECORD, "needle"));
    }

    @Test
    void searchOfEventsTestsLocationNoteAndSummary() {
        int event = add(EVENT, new CommitRequest().string(Event.SUMMARY, "One").string(Event.NOTE, "Two")
                .string(Event.LOCATION, "Three"));
        int withoutLocation = add(EVENT, new CommitRequest().string(Event.SUMMARY, "x").string(Event.NOTE, "y"));

        for (String text : new String[] {"ONE", "two", "hree"}) {
            assertEquals(Arrays.asList(event, withoutLocation), matches(EVENT, text), text);
        }
        assertEquals(Collections.singletonList(withoutLocation), matches(EVENT, "four"));
    }

    @Test
    void searchOfToDosTestsNoteAndSummary() {
        int todo = add(TODO, new CommitRequest().string(ToDo.SUMMARY, "One").string(ToDo.NOTE, "Two"));

        assertEquals(Collections.singletonList(todo), matches(TODO, "ONE"));
        assertEquals(Collections.singletonList(todo), matches(TODO, "wO"));
        assertEquals(Collections.emptyList(), matches(TODO, "three"));
    }
}
