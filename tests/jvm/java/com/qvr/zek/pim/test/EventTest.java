package com.qvr.zek.pim.test;

import static com.qvr.zek.pim.PIMCodes.Event.*;
import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertNull;
import static org.junit.jupiter.api.Assertions.assertThrows;

import com.qvr.zek.pim.CommitRequest;
import com.qvr.zek.pim.PIMCodes.RepeatField;
import com.qvr.zek.pim.PIMCodes.RepeatFrequency;
import java.util.Arrays;
import java.util.Calendar;
import java.util.GregorianCalendar;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;
import org.junit.jupiter.params.provider.ValueSource;

class EventTest extends StoreTest {
    private static final long MARCH_2024 = 1_710_000_000_000L;
    private static final long HOUR = 3_600_000L;

    private static int repeatInt(int recindex, int field) {
        return EVENTS.getRepeatIntN(HANDLE, recindex, field);
    }

    private static long repeatEnd(int recindex) {
        return EVENTS.getRepeatDateN(HANDLE, recindex, RepeatField.END);
    }

    private static int[] repeatFields(int recindex) {
        return EVENTS.getRepeatFieldsN(HANDLE, recindex);
    }

    private static CommitRequest everything() {
        return new CommitRequest()
                .string(SUMMARY, "Concert \ud83c\udfb7")
                .string(LOCATION, "Pier")
                .string(NOTE, "Line 1\nLine 2")
                .number(START, MARCH_2024)
                .number(END, MARCH_2024 + HOUR)
                .number(ALARM, MARCH_2024 - HOUR)
                .number(REVISION, MARCH_2024 - 24 * HOUR);
    }

    @Test
    void everyFieldComesBackAsItWasCommitted() {
        int event = add(EVENT, everything());

        assertEquals("Concert \ud83c\udfb7", text(EVENT, event, SUMMARY));
        assertEquals("Pier", text(EVENT, event, LOCATION));
        assertEquals("Line 1\nLine 2", text(EVENT, event, NOTE));
        assertEquals(MARCH_2024, date(EVENT, event, START));
        assertEquals(MARCH_2024 + HOUR, date(EVENT, event, END));
        assertEquals(MARCH_2024 - 24 * HOUR, date(EVENT, event, REVISION));
        assertEquals((int) (MARCH_2024 - HOUR), ITEMS.getIntN(EVENT, HANDLE, event, ALARM, 0));
        for (int field : new int[] {SUMMARY, LOCATION, NOTE, START, END, ALARM, REVISION}) {
            assertEquals(1, count(EVENT, event, field), "field " + field);
        }
        assertArrayEquals(new int[] {LOCATION, NOTE, SUMMARY, ALARM, END, REVISION, START},
                ITEMS.getFieldsN(EVENT, HANDLE, event));
    }

    @Test
    void theAlarmIsReadableAsAnIntOnlyAndWraps() {
        int event = add(EVENT, new CommitRequest().number(ALARM, 1_262_304_000_000L));

        assertEquals(-416_385_024, ITEMS.getIntN(EVENT, HANDLE, event, ALARM, 0));
        assertEquals(0, date(EVENT, event, ALARM));
    }

    @Test
    void theFieldListLeavesOutWhatIsEmpty() {
        int event = add(EVENT, everything().string(NOTE, ""));
        assertArrayEquals(new int[] {LOCATION, SUMMARY, ALARM, END, REVISION, START},
                ITEMS.getFieldsN(EVENT, HANDLE, event));
    }

    @Test
    void absentFieldsReadAsNothing() {
        int event = addEvent("Bare");

        assertEquals("", text(EVENT, event, LOCATION));
        assertEquals("", text(EVENT, event, NOTE));
        assertEquals("", text(EVENT, event, UID));
        assertEquals(-1000, date(EVENT, event, START));
        assertEquals(-1000, date(EVENT, event, END));
        assertEquals(-1000, ITEMS.getIntN(EVENT, HANDLE, event, ALARM, 0));
        for (int field : new int[] {LOCATION, NOTE, START, END, ALARM, CLASS, UID, 99, 109}) {
            assertEquals(0, count(EVENT, event, field), "field " + field);
        }
        assertEquals(0, ITEMS.getIntN(EVENT, HANDLE, event, SUMMARY, 0));
        assertEquals(0, date(EVENT, event, SUMMARY));
        assertFalse(ITEMS.getBooleanN(EVENT, HANDLE, event, SUMMARY, 0));
        assertEquals(0, ITEMS.getAttributesN(EVENT, HANDLE, event, SUMMARY, 0));
    }

    @Test
    void aRecordThatIsNotThereReadsAsNothing() {
        assertNull(text(EVENT, NO_SUCH_RECORD, SUMMARY));
        assertEquals(0, date(EVENT, NO_SUCH_RECORD, START));
        assertEquals(0, ITEMS.getIntN(EVENT, HANDLE, NO_SUCH_RECORD, ALARM, 0));
        assertFalse(ITEMS.getBooleanN(EVENT, HANDLE, NO_SUCH_RECORD, SUMMARY, 0));
        assertEquals(0, count(EVENT, NO_SUCH_RECORD, SUMMARY));
        assertNull(ITEMS.getFieldsN(EVENT, HANDLE, NO_SUCH_RECORD));
        assertEquals(0, repeatInt(NO_SUCH_RECORD, RepeatField.FREQUENCY));
        assertEquals(0, repeatEnd(NO_SUCH_RECORD));
        assertArrayEquals(new int[0], repeatFields(NO_SUCH_RECORD));
    }

    @ParameterizedTest
    @CsvSource({"107,256", "103,160"})
    void aTextAtItsLimitIsTakenAndOneByteMoreStoresNothing(int field, int limit) {
        int event = add(EVENT, new CommitRequest().string(field, repeat('x', limit)));
        assertEquals(repeat('x', limit), text(EVENT, event, field));

        assertEquals(-1, commit(EVENT, -1, new CommitRequest().string(field, repeat('x', limit + 1))));
        assertEquals(-1, commit(EVENT, event, new CommitRequest().string(field, repeat('x', limit + 1))));
        assertEquals(1, records(EVENT).size());
        assertEquals(repeat('x', limit), text(EVENT, event, field));
    }

    @Test
    void aNoteTakes1024BytesAndReadsUpTo1023AtACharacterBoundary() {
        int exact = add(EVENT, new CommitRequest().string(NOTE, repeat('n', 1024)));
        assertEquals(repeat('n', 1023), text(EVENT, exact, NOTE));

        int cut = add(EVENT, new CommitRequest().string(NOTE, repeat('n', 1022) + "\u00e9"));
        assertEquals(repeat('n', 1022), text(EVENT, cut, NOTE));

        assertEquals(-1, commit(EVENT, -1, new CommitRequest().string(NOTE, repeat('n', 1025))));
    }

    @Test
    void anUpdateReplacesTheWholeEvent() {
        int event = add(EVENT, everything().number(RepeatField.FREQUENCY, RepeatFrequency.DAILY));

        assertEquals(event, commit(EVENT, event, new CommitRequest().string(SUMMARY, "Only this")));

        assertEquals("Only this", text(EVENT, event, SUMMARY));
        assertEquals("", text(EVENT, event, LOCATION));
        assertEquals("", text(EVENT, event, NOTE));
        assertEquals(-1000, date(EVENT, event, START));
        assertEquals(RepeatFrequency.NONE, repeatInt(event, RepeatField.FREQUENCY));
    }

    @Test
    void anUpdateThatTheStoreRefusesAnswersTheIndexAllTheSame() {
        // Kept: the refusal of the store shows in the trace only.
        assertEquals(NO_SUCH_RECORD, commit(EVENT, NO_SUCH_RECORD, new CommitRequest().string(SUMMARY, "x")));
        assertEquals(-1, LISTS.nextRecordN(EVENT, HANDLE, -1));
    }

    @Test
    void anEndInAnEarlierYearMovesTheStartTo1900() {
        long start = new GregorianCalendar(2024, Calendar.JUNE, 15, 12, 0).getTimeInMillis();
        long end = new GregorianCalendar(2023, Calendar.JUNE, 15, 12, 0).getTimeInMillis();
        int event = add(EVENT, new CommitRequest().number(START, start).number(END, end));

        assertEquals(-1000, date(EVENT, event, START));
        assertEquals(0, count(EVENT, event, START));
        assertEquals(end, date(EVENT, event, END));
    }

    @Test
    void aMissingEndCountsAsOneInAnEarlierYear() {
        int event = add(EVENT, new CommitRequest().number(START, MARCH_2024));

        assertEquals(-1000, date(EVENT, event, START));
        assertEquals(0, count(EVENT, event, END));
    }

    @Test
    void anEarlierEndInTheSameYearIsKept() {
        long start = new GregorianCalendar(2024, Calendar.JUNE, 15, 12, 0).getTimeInMillis();
        int event = add(EVENT, new CommitRequest().number(START, start).number(END, start - HOUR));

        assertEquals(start, date(EVENT, event, START));
        assertEquals(start - HOUR, date(EVENT, event, END));
    }

    @Test
    void supportedRepeatRules() {
        assertArrayEquals(new int[] {16, 17, 18, 19}, EVENT_LIST.getSupportedRepeatRuleFrequenciesN());
        assertArrayEquals(new int[] {224}, EVENT_LIST.getSupportedRepeatRuleFieldsN(16));
        assertArrayEquals(new int[] {226}, EVENT_LIST.getSupportedRepeatRuleFieldsN(17));
        assertArrayEquals(new int[] {225, 242}, EVENT_LIST.getSupportedRepeatRuleFieldsN(18));
        assertArrayEquals(new int[] {228, 233, 250}, EVENT_LIST.getSupportedRepeatRuleFieldsN(19));
        assertArrayEquals(new int[] {0}, EVENT_LIST.getSupportedRepeatRuleFieldsN(15));
        assertArrayEquals(new int[] {0}, EVENT_LIST.getSupportedRepeatRuleFieldsN(20));
    }

    @Test
    void aWeeklyEventWithoutEnd() {
        int event = add(EVENT, new CommitRequest().number(RepeatField.FREQUENCY, RepeatFrequency.WEEKLY)
                .number(RepeatField.INTERVAL, 2));

        assertArrayEquals(new int[] {6, 2}, repeatFields(event));
        assertEquals(RepeatFrequency.WEEKLY, repeatInt(event, RepeatField.FREQUENCY));
        assertEquals(2, repeatInt(event, RepeatField.INTERVAL));
        for (int field : new int[] {RepeatField.DAY_IN_MONTH, RepeatField.DAY_IN_WEEK, RepeatField.DAY_IN_YEAR,
            RepeatField.MONTH_IN_YEAR, RepeatField.WEEK_IN_MONTH}) {
            assertEquals(1, repeatInt(event, field), "field " + field);
        }
        assertEquals(0, repeatInt(event, RepeatField.END));
        assertEquals(0, repeatInt(event, 9));
        assertEquals(-1, repeatEnd(event));
        assertEquals(0, EVENTS.getRepeatDateN(HANDLE, event, RepeatField.FREQUENCY));
        assertArrayEquals(new long[0], EVENTS.getRepeatExceptDatesN(HANDLE, event));
    }

    @Test
    void theEndOfARuleIsInSeconds() {
        int event = add(EVENT, new CommitRequest().number(RepeatField.FREQUENCY, RepeatFrequency.WEEKLY)
                .number(RepeatField.END, MARCH_2024));

        assertEquals(MARCH_2024 / 1000, repeatEnd(event));
        assertArrayEquals(new int[] {4, 6, 2}, repeatFields(event));
    }

    @ParameterizedTest
    @CsvSource({"16,6", "17,6 2", "18,6 1 8 2", "19,6 3 7 8 2 1"})
    void everyFrequencyHasItsFields(int frequency, String codes) {
        int event = add(EVENT, new CommitRequest().number(RepeatField.FREQUENCY, frequency));

        assertEquals(frequency, repeatInt(event, RepeatField.FREQUENCY));
        assertEquals(1, repeatInt(event, RepeatField.INTERVAL));
        assertArrayEquals(Arrays.stream(codes.split(" ")).mapToInt(Integer::parseInt).toArray(),
                repeatFields(event));
    }

    @Test
    void anIntervalBeforeTheFrequencyIsLost() {
        int event = add(EVENT, new CommitRequest().number(RepeatField.INTERVAL, 3)
                .number(RepeatField.FREQUENCY, RepeatFrequency.WEEKLY));
        assertEquals(1, repeatInt(event, RepeatField.INTERVAL));
    }

    @ParameterizedTest
    @ValueSource(longs = {15, 20, 0, -1, 16 + (1L << 32)})
    void anUnknownFrequencyOnlySetsTheInterval(long frequency) {
        int event = add(EVENT, new CommitRequest().number(RepeatField.FREQUENCY, frequency));

        assertEquals(RepeatFrequency.NONE, repeatInt(event, RepeatField.FREQUENCY));
        assertEquals(1, repeatInt(event, RepeatField.INTERVAL));
        assertArrayEquals(new int[0], repeatFields(event));
    }

    @Test
    void anEventThatDoesNotRepeatHasNoRepeatFieldsEvenWithAnEnd() {
        int event = add(EVENT, new CommitRequest().number(RepeatField.END, MARCH_2024));

        assertArrayEquals(new int[0], repeatFields(event));
        assertEquals(RepeatFrequency.NONE, repeatInt(event, RepeatField.FREQUENCY));
        assertEquals(MARCH_2024 / 1000, repeatEnd(event));
    }

    @Test
    void theRepeatCountReadsTheRuleAsADate() {
        // Frequency and interval stand where a date has its seconds and minutes; the day is the one before 1900-01-01.
        int minutesToJanuary1970 = (25_567 + 1) * 24 * 60;
        int event = add(EVENT, new CommitRequest().number(RepeatField.FREQUENCY, RepeatFrequency.YEARLY)
                .number(RepeatField.INTERVAL, minutesToJanuary1970 + 2 * 24 * 60));
        long yearlyIsFour = new GregorianCalendar(1970, Calendar.JANUARY, 3, 0, 0, 4).getTimeInMillis() / 1000;

        assertEquals(yearlyIsFour, repeatInt(event, RepeatField.COUNT));
    }

    @Test
    void theRepeatCountOfAnOrdinaryRuleIsZero() {
        int event = add(EVENT, new CommitRequest().number(RepeatField.FREQUENCY, RepeatFrequency.DAILY)
                .number(RepeatField.END, MARCH_2024));
        assertEquals(0, repeatInt(event, RepeatField.COUNT));
    }

    @Test
    void theNextSortedEventsAreCountedButNotNamed() {
        assertArrayEquals(new int[0], EVENT_LIST.nextSortedEventN(HANDLE, 0));
        for (long start : new long[] {MARCH_2024, MARCH_2024, MARCH_2024 + HOUR}) {
            add(EVENT, new CommitRequest().number(START, start).number(END, start));
        }

        assertArrayEquals(new int[] {0, 0}, EVENT_LIST.nextSortedEventN(HANDLE, MARCH_2024 - 1));
        assertArrayEquals(new int[] {0}, EVENT_LIST.nextSortedEventN(HANDLE, MARCH_2024));
        // A failed walk hands a negative length to the array, which the VM refuses.
        assertThrows(NegativeArraySizeException.class,
                () -> EVENT_LIST.nextSortedEventN(HANDLE, MARCH_2024 + HOUR));
    }
}
