package com.qvr.zek.pim.test;

import static org.junit.jupiter.api.Assertions.assertEquals;

import com.qvr.zek.pim.CommitRequest;
import com.qvr.zek.pim.PIMCodes.Contact;
import com.qvr.zek.pim.PIMCodes.Event;
import com.qvr.zek.pim.PIMCodes.RepeatField;
import com.qvr.zek.pim.PIMCodes.ToDo;
import java.time.Instant;
import java.time.LocalDateTime;
import java.time.ZoneId;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;
import org.junit.jupiter.params.provider.ValueSource;

/** Dates through every field that holds one, run in several time zones: no zone may make a difference. */
class DateTest extends StoreTest {
    private static final long[] MOMENTS = {
        0, 1000, 86_399_000L, 951_782_400_000L, 1_262_304_000_000L,
        // The half years of daylight saving, both sides of Berlin's changes in 2024, the repeated hour included.
        1_705_320_000_000L, 1_721_044_800_000L, 1_711_846_799_000L, 1_711_846_800_000L, 1_729_987_199_000L,
        1_729_989_000_000L, 1_729_990_800_000L, 1_729_994_400_000L,
        // The ends of 32-bit seconds, kept clear of the zones' offsets.
        2_147_400_000_000L, -2_147_400_000_000L, -86_400_000L,
    };

    private static long contactDate(int field, long value) {
        return date(CONTACT, add(CONTACT, new CommitRequest().number(field, value)), field);
    }

    /** The end goes with the start, which a missing end would move to 1900. */
    private static long eventDate(int field, long value) {
        return date(EVENT, add(EVENT, new CommitRequest().number(field, value).number(Event.END, value)), field);
    }

    private static long todoDate(int field, long value) {
        return date(TODO, add(TODO, new CommitRequest().number(field, value)), field);
    }

    @Test
    void everyMomentComesBackFromEveryDateField() {
        for (long moment : MOMENTS) {
            assertEquals(moment, contactDate(Contact.BIRTHDAY, moment), "BIRTHDAY " + moment);
            assertEquals(moment, eventDate(Event.START, moment), "START " + moment);
            assertEquals(moment, eventDate(Event.END, moment), "END " + moment);
            assertEquals(moment, eventDate(Event.REVISION, moment), "event REVISION " + moment);
            assertEquals(moment, todoDate(ToDo.DUE, moment), "DUE " + moment);
            assertEquals(moment, todoDate(ToDo.COMPLETION_DATE, moment), "COMPLETION_DATE " + moment);
            assertEquals(moment, todoDate(ToDo.REVISION, moment), "to-do REVISION " + moment);
            int alarm = add(EVENT, new CommitRequest().number(Event.ALARM, moment));
            assertEquals((int) moment, ITEMS.getIntN(EVENT, HANDLE, alarm, Event.ALARM, 0), "ALARM " + moment);
            int rule = add(EVENT, new CommitRequest().number(RepeatField.END, moment));
            assertEquals(moment / 1000, EVENTS.getRepeatDateN(HANDLE, rule, RepeatField.END), "repeat END " + moment);
        }
    }

    @ParameterizedTest
    @CsvSource({"1234567,1234000", "-1,0", "999,0", "-1999,-1000", "1710000000999,1710000000000"})
    void millisecondsAreCutTowardsZero(long committed, long stored) {
        assertEquals(stored, contactDate(Contact.BIRTHDAY, committed));
        assertEquals(stored, eventDate(Event.START, committed));
        assertEquals(stored, todoDate(ToDo.DUE, committed));
    }

    /** 2038-01-20 00:00:00 UTC and a date in 2100 come back as 32-bit seconds have them. */
    @ParameterizedTest
    @ValueSource(longs = {2_147_558_400_000L, 4_102_444_800_000L, -2_208_988_800_000L})
    void datesBeyond32BitSecondsWrap(long committed) {
        long wrapped = (int) (committed / 1000) * 1000L;
        assertEquals(wrapped, contactDate(Contact.BIRTHDAY, committed));
        assertEquals(wrapped, eventDate(Event.END, committed));
        assertEquals(wrapped, todoDate(ToDo.COMPLETION_DATE, committed));
    }

    @ParameterizedTest
    @ValueSource(strings = {"2024-01-15T12:00", "2024-07-15T12:00", "1970-01-02T00:00"})
    void localDatesComeBackAsLocalDates(String local) {
        LocalDateTime noon = LocalDateTime.parse(local);
        long committed = noon.atZone(ZoneId.systemDefault()).toInstant().toEpochMilli();
        long stored = eventDate(Event.START, committed);
        assertEquals(noon, Instant.ofEpochMilli(stored).atZone(ZoneId.systemDefault()).toLocalDateTime());
    }
}
