package com.qvr.zek.pim.test;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.qvr.zek.pim.CommitRequest;
import java.util.Arrays;
import java.util.Collections;
import java.util.List;
import org.junit.jupiter.api.Test;

class CategoryTest extends StoreTest {
    private static final String[] NONE = {};

    private static void addCategories(String... names) {
        for (String name : names) {
            LISTS.addCategoryN(CONTACT, HANDLE, name);
        }
    }

    private static String[] categories() {
        return LISTS.getCategoriesN(CONTACT, HANDLE);
    }

    private static boolean isCategory(String name) {
        return LISTS.isCategoryN(CONTACT, HANDLE, name);
    }

    private static int addContactIn(String family, String... categories) {
        CommitRequest request = contact(family, "X");
        for (String category : categories) {
            request.category(category);
        }
        return add(CONTACT, request);
    }

    private static String[] categoriesOf(int recindex) {
        return ITEMS.getCategoriesN(CONTACT, HANDLE, recindex);
    }

    private static List<Integer> contactsIn(String category) {
        return walk(last -> LISTS.nextRecordInCategoryN(CONTACT, HANDLE, last, category));
    }

    @Test
    void addedCategoriesAreListedInTheOrderOfTheirKeys() {
        assertArrayEquals(NONE, categories());
        addCategories("Family", "\u5bb6\u65cf", "Caf\u00e9 \ud83c\udf55");
        assertArrayEquals(new String[] {"Family", "\u5bb6\u65cf", "Caf\u00e9 \ud83c\udf55"}, categories());
        assertTrue(isCategory("Family"));
        assertTrue(isCategory("Caf\u00e9 \ud83c\udf55"));
        assertFalse(isCategory("family"));
    }

    @Test
    void theOtherListsShowTheContactListsCategoriesAndHaveNone() {
        addCategories("Family");
        assertArrayEquals(new String[] {"Family"}, LISTS.getCategoriesN(EVENT, HANDLE));
        assertArrayEquals(new String[] {"Family"}, LISTS.getCategoriesN(TODO, HANDLE));
        assertFalse(LISTS.isCategoryN(EVENT, HANDLE, "Family"));
        LISTS.addCategoryN(EVENT, HANDLE, "Events");
        LISTS.deleteCategoryN(TODO, HANDLE, "Family", false);
        assertArrayEquals(new String[] {"Family"}, categories());
    }

    @Test
    void namesThatCannotBeAddedChangeNothing() {
        addCategories("Family");
        addCategories("Family", "a,b", repeat('x', 65), null);
        assertArrayEquals(new String[] {"Family"}, categories());
        assertFalse(isCategory("a,b"));
        assertFalse(isCategory(""));
        assertFalse(isCategory(null));
    }

    @Test
    void aNameOfSixtyFourBytesIsListedButItsMembersReadAsInNoCategory() {
        String name = repeat('x', 64);
        addCategories(name);
        int member = addContactIn("Member", name);

        assertArrayEquals(new String[] {name}, categories());
        assertTrue(isCategory(name));
        assertEquals(Collections.singletonList(member), contactsIn(name));
        assertArrayEquals(NONE, categoriesOf(member));
    }

    @Test
    void aNameOfSixtyThreeBytesReadsBackForItsMembers() {
        String name = repeat('x', 63);
        addCategories(name);
        assertArrayEquals(new String[] {name}, categoriesOf(addContactIn("Member", name)));
    }

    @Test
    void thirtyCategoriesAreTheMost() {
        for (int i = 0; i < 31; i++) {
            addCategories("Category " + i);
        }
        assertEquals(30, categories().length);
        assertFalse(isCategory("Category 30"));
    }

    @Test
    void renamingKeepsTheMembers() {
        addCategories("Old", "Other");
        int member = addContactIn("Member", "Old");

        LISTS.renameCategoryN(CONTACT, HANDLE, "Old", "New");

        assertArrayEquals(new String[] {"New", "Other"}, categories());
        assertArrayEquals(new String[] {"New"}, categoriesOf(member));
        assertEquals(Collections.singletonList(member), contactsIn("New"));
    }

    @Test
    void renamingTakesANameWithACommaAndOneThatExists() {
        addCategories("First", "Second");

        LISTS.renameCategoryN(CONTACT, HANDLE, "First", "Second");
        assertArrayEquals(new String[] {"Second", "Second"}, categories());

        LISTS.renameCategoryN(CONTACT, HANDLE, "Second", "a,b");
        assertArrayEquals(new String[] {"a,b", "a,b"}, categories());

        // Neither can be deleted by a name with a comma, so they are renamed for the next test to clear them.
        LISTS.renameCategoryN(CONTACT, HANDLE, "a,b", "plain");
        LISTS.deleteCategoryN(CONTACT, HANDLE, "plain", false);
        assertArrayEquals(new String[] {"plain"}, categories());
    }

    @Test
    void renamingToANullOrTooLongNameOrFromAnUnknownOneChangesNothing() {
        addCategories("Kept");
        LISTS.renameCategoryN(CONTACT, HANDLE, "Kept", null);
        LISTS.renameCategoryN(CONTACT, HANDLE, null, "New");
        LISTS.renameCategoryN(CONTACT, HANDLE, "Kept", repeat('x', 65));
        LISTS.renameCategoryN(CONTACT, HANDLE, "Unknown", "New");
        assertArrayEquals(new String[] {"Kept"}, categories());
    }

    @Test
    void deletingLeavesTheContactsUnlessAskedToTakeThem() {
        addCategories("Gone", "Stays");
        int both = addContactIn("Both", "Gone", "Stays");

        LISTS.deleteCategoryN(CONTACT, HANDLE, "Gone", false);

        assertArrayEquals(new String[] {"Stays"}, categories());
        assertArrayEquals(new String[] {"Stays"}, categoriesOf(both));
    }

    @Test
    void deletingWithTheUnassignedItemsDeletesEveryMemberAlsoThoseInOtherCategories() {
        addCategories("Gone", "Stays");
        int both = addContactIn("Both", "Gone", "Stays");
        int only = addContactIn("Only", "Gone");
        int other = addContactIn("Other", "Stays");

        LISTS.deleteCategoryN(CONTACT, HANDLE, "Gone", true);

        assertEquals(1, ITEMS.isRecordDeletedN(CONTACT, HANDLE, both));
        assertEquals(1, ITEMS.isRecordDeletedN(CONTACT, HANDLE, only));
        assertEquals(Collections.singletonList(other), records(CONTACT));
        assertEquals(Collections.singletonList(other), contactsIn("Stays"));
    }

    @Test
    void deletingWhatIsNoCategoryChangesNothing() {
        addCategories("Kept");
        for (String name : new String[] {"", "a,b", "Unknown", "kept", null, repeat('x', 200)}) {
            LISTS.deleteCategoryN(CONTACT, HANDLE, name, true);
        }
        assertArrayEquals(new String[] {"Kept"}, categories());
    }

    @Test
    void aContactKnowsItsCategories() {
        addCategories("One", "Two", "Three");
        assertArrayEquals(new String[] {"One", "Three"}, categoriesOf(addContactIn("Some", "Three", "One")));
        assertArrayEquals(NONE, categoriesOf(addContactIn("None")));
        assertArrayEquals(NONE, categoriesOf(addContactIn("Unknown", "Nobody added this")));
    }

    @Test
    void anItemOfAnotherListHasTheCategoriesOfTheContactWithItsIndex() {
        addCategories("One");
        int member = addContactIn("Member", "One");
        assertArrayEquals(new String[] {"One"}, ITEMS.getCategoriesN(EVENT, HANDLE, member));
        assertArrayEquals(new String[] {"One"}, ITEMS.getCategoriesN(TODO, HANDLE, member));
    }

    @Test
    void anUpdateKeepsTheCategoriesAndAddsToThem() {
        addCategories("One", "Two");
        int member = addContactIn("Member", "One");

        commit(CONTACT, member, contact("Member", "Y").category("Two"));

        assertArrayEquals(new String[] {"One", "Two"}, categoriesOf(member));
    }

    @Test
    void theWalkOverACategoryShowsItsMembersOnly() {
        addCategories("One", "Empty");
        int first = addContactIn("First", "One");
        addContactIn("Outside");
        int second = addContactIn("Second", "One");

        assertEquals(Arrays.asList(first, second), contactsIn("One"));
        assertEquals(Collections.emptyList(), contactsIn("Empty"));
        assertEquals(Collections.emptyList(), contactsIn("Unknown"));
        assertEquals(first, LISTS.nextRecordInCategoryN(CONTACT, HANDLE, NO_SUCH_RECORD, "One"));
        assertEquals(-1, LISTS.nextRecordInCategoryN(EVENT, HANDLE, -1, "One"));
    }

    @Test
    void theWalkWithoutCategoryEndsAtAnIndexThatIsNotInIt() {
        addCategories("One");
        int first = addContactIn("First");
        int member = addContactIn("Member", "One");
        int second = addContactIn("Second");

        assertEquals(Arrays.asList(first, second), contactsIn(null));
        assertEquals(-1, LISTS.nextRecordInCategoryN(CONTACT, HANDLE, NO_SUCH_RECORD, null));
        assertEquals(-1, LISTS.nextRecordInCategoryN(CONTACT, HANDLE, member, null));
    }

    @Test
    void theWalkWithoutCategoryOverAnEmptyStoreEndsAtOnce() {
        assertEquals(-1, LISTS.nextRecordInCategoryN(CONTACT, HANDLE, -1, null));
    }
}
