package com.qvr.zek.pim.test;

import static com.qvr.zek.pim.PIMCodes.ToDo.*;
import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertNull;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.qvr.zek.pim.CommitRequest;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.ValueSource;

class ToDoTest extends StoreTest {
    private static final long MARCH_2024 = 1_710_000_000_000L;
    private static final long HOUR = 3_600_000L;

    private static int priority(int recindex) {
        return ITEMS.getIntN(TODO, HANDLE, recindex, PRIORITY, 0);
    }

    private static boolean completed(int recindex) {
        return ITEMS.getBooleanN(TODO, HANDLE, recindex, COMPLETED, 0);
    }

    private static int[] next(int field, long after) {
        return TODO_LIST.nextSortedToDoN(HANDLE, field, after);
    }

    private static int addDue(long due) {
        return add(TODO, new CommitRequest().number(DUE, due));
    }

    @Test
    void everyFieldComesBackAsItWasCommitted() {
        int todo = add(TODO, new CommitRequest()
                .string(SUMMARY, "Sweep \ud83e\uddf9")
                .string(NOTE, "Line 1\nLine 2")
                .number(DUE, MARCH_2024)
                .number(COMPLETION_DATE, MARCH_2024 - HOUR)
                .number(COMPLETED, 1)
                .number(PRIORITY, 2)
                .number(REVISION, MARCH_2024 - 24 * HOUR));

        assertEquals("Sweep \ud83e\uddf9", text(TODO, todo, SUMMARY));
        assertEquals("Line 1\nLine 2", text(TODO, todo, NOTE));
        assertEquals(MARCH_2024, date(TODO, todo, DUE));
        assertEquals(MARCH_2024 - HOUR, date(TODO, todo, COMPLETION_DATE));
        assertEquals(MARCH_2024 - 24 * HOUR, date(TODO, todo, REVISION));
        assertTrue(completed(todo));
        assertEquals(2, priority(todo));
        for (int field : new int[] {SUMMARY, NOTE, DUE, COMPLETION_DATE, REVISION, COMPLETED, PRIORITY}) {
            assertEquals(1, count(TODO, todo, field), "field " + field);
        }
        assertArrayEquals(new int[] {NOTE, SUMMARY, COMPLETED, COMPLETION_DATE, DUE, REVISION, PRIORITY},
                ITEMS.getFieldsN(TODO, HANDLE, todo));
    }

    @Test
    void everyToDoHasAStatusAndAPriority() {
        int todo = addToDo("Bare");

        int[] fields = ITEMS.getFieldsN(TODO, HANDLE, todo);
        assertEquals(SUMMARY, fields[0]);
        assertEquals(COMPLETED, fields[1]);
        assertEquals(PRIORITY, fields[fields.length - 1]);
        assertFalse(completed(todo));
        assertEquals(0, priority(todo));
        assertEquals(0, count(TODO, todo, DUE));
        assertEquals(0, count(TODO, todo, COMPLETION_DATE));
        assertEquals(0, count(TODO, todo, NOTE));
        assertEquals(0, count(TODO, todo, CLASS));
        assertEquals(0, count(TODO, todo, UID));
        assertEquals(-1000, date(TODO, todo, DUE));
        assertEquals("", text(TODO, todo, NOTE));
        assertEquals("", text(TODO, todo, UID));
        assertEquals(0, date(TODO, todo, SUMMARY));
        assertEquals(0, ITEMS.getIntN(TODO, HANDLE, todo, SUMMARY, 0));
        assertFalse(ITEMS.getBooleanN(TODO, HANDLE, todo, SUMMARY, 0));
    }

    @Test
    void aRecordThatIsNotThereReadsAsNothing() {
        assertNull(text(TODO, NO_SUCH_RECORD, SUMMARY));
        assertEquals(0, date(TODO, NO_SUCH_RECORD, DUE));
        assertEquals(0, priority(NO_SUCH_RECORD));
        assertFalse(completed(NO_SUCH_RECORD));
        assertEquals(0, count(TODO, NO_SUCH_RECORD, COMPLETED));
        assertNull(ITEMS.getFieldsN(TODO, HANDLE, NO_SUCH_RECORD));
    }

    @ParameterizedTest
    @ValueSource(longs = {0, 2, -1, 1 + (1L << 32), Long.MIN_VALUE})
    void onlyOneMeansCompleted(long value) {
        assertFalse(completed(add(TODO, new CommitRequest().number(COMPLETED, value))));
    }

    @Test
    void prioritiesOutsideTheThreeLevelsReadAsNone() {
        for (int level = 0; level <= 2; level++) {
            assertEquals(level, priority(add(TODO, new CommitRequest().number(PRIORITY, level))));
        }
        for (long other : new long[] {3, 5, 9, -1}) {
            int todo = add(TODO, new CommitRequest().number(PRIORITY, other));
            assertEquals(0, priority(todo), "priority " + other);
            assertEquals(0, count(TODO, todo, PRIORITY), "priority " + other);
        }
        assertEquals(2, priority(add(TODO, new CommitRequest().number(PRIORITY, 2 + (1L << 32)))));
    }

    @Test
    void aTextThatIsTooLongIsDroppedAndTheToDoStored() {
        int todo = add(TODO, new CommitRequest()
                .string(SUMMARY, repeat('s', 257))
                .string(NOTE, "kept")
                .number(DUE, MARCH_2024));

        assertEquals("", text(TODO, todo, SUMMARY));
        assertEquals("kept", text(TODO, todo, NOTE));
        assertEquals(MARCH_2024, date(TODO, todo, DUE));

        int other = add(TODO, new CommitRequest().string(SUMMARY, repeat('s', 256)).string(NOTE, repeat('n', 1025)));
        assertEquals(repeat('s', 256), text(TODO, other, SUMMARY));
        assertEquals("", text(TODO, other, NOTE));
    }

    @Test
    void anUpdateReplacesTheWholeToDo() {
        int todo = add(TODO, new CommitRequest().string(SUMMARY, "Old").number(DUE, MARCH_2024).number(PRIORITY, 2));

        assertEquals(todo, commit(TODO, todo, new CommitRequest().string(NOTE, "New")));

        assertEquals("", text(TODO, todo, SUMMARY));
        assertEquals("New", text(TODO, todo, NOTE));
        assertEquals(0, count(TODO, todo, DUE));
        assertEquals(0, priority(todo));
    }

    @Test
    void anUpdateThatTheStoreRefusesFails() {
        assertEquals(-1, commit(TODO, NO_SUCH_RECORD, new CommitRequest().string(SUMMARY, "x")));
    }

    @Test
    void theWalkByDueDateShowsTiesTogetherAndEndsEmpty() {
        int second = addDue(MARCH_2024 + HOUR);
        int first = addDue(MARCH_2024);
        int alsoSecond = addDue(MARCH_2024 + HOUR);
        addToDo("Never due");

        assertArrayEquals(new int[] {first}, next(DUE, MARCH_2024 - 1));
        assertArrayEquals(new int[] {second, alsoSecond}, next(DUE, MARCH_2024));
        assertArrayEquals(new int[0], next(DUE, MARCH_2024 + HOUR));
    }

    @Test
    void aToDoWithoutDateComesAtMinusOneSecond() {
        int undated = addToDo("Never due");
        assertArrayEquals(new int[] {undated}, next(DUE, Long.MIN_VALUE));
        assertArrayEquals(new int[0], next(DUE, -1000));
    }

    @Test
    void theOtherDateFieldsAreWalkedAlike() {
        int todo = add(TODO, new CommitRequest().number(COMPLETION_DATE, MARCH_2024).number(REVISION, MARCH_2024 + HOUR));

        assertArrayEquals(new int[] {todo}, next(COMPLETION_DATE, 0));
        assertArrayEquals(new int[0], next(COMPLETION_DATE, MARCH_2024));
        assertArrayEquals(new int[] {todo}, next(REVISION, MARCH_2024));
        assertArrayEquals(new int[0], next(REVISION, MARCH_2024 + HOUR));
    }

    @Test
    void fieldsWithoutDateCompareZero() {
        int todo = addToDo("Any");
        for (int field : new int[] {NOTE, SUMMARY, 0x1000001}) {
            assertArrayEquals(new int[0], next(field, 0), "field " + field);
            assertArrayEquals(new int[] {todo}, next(field, -1), "field " + field);
        }
    }

    @Test
    void theFirstExtendedFieldIsTheStartWhichToDosDoNotHave() {
        int todo = addToDo("Any");
        assertArrayEquals(new int[] {todo}, next(0x1000000, Long.MIN_VALUE));
        assertArrayEquals(new int[0], next(0x1000000, -1000));
    }

    @Test
    void anEmptyListHasNoNextToDo() {
        assertArrayEquals(new int[0], next(DUE, 0));
        addEvent("Not a to-do");
        assertArrayEquals(new int[0], next(DUE, Long.MIN_VALUE));
    }
}
