package com.qvr.zek.pim.demo;

import static com.qvr.zek.pim.PIMCodes.Event.*;

import com.qvr.zek.pim.PIMCodes;
import com.qvr.zek.pim.PIMCodes.RepeatField;
import com.qvr.zek.pim.PIMCodes.RepeatFrequency;
import java.util.Arrays;
import java.util.List;

/** One stored event as the library reads it back. */
final class EventEntry {
    /** The words for the frequencies, from DAILY on. */
    static final List<String> FREQUENCIES = Arrays.asList("daily", "weekly", "monthly", "yearly");

    private static final int LIST = PIMCodes.List.EVENT;
    private static final List<String> UNITS = Arrays.asList("days", "weeks", "months", "years");

    final int recindex;
    final String summary;
    final String location;
    final String note;
    final Long start;
    final Long end;
    /** How long before the start the alarm goes off, or null without alarm. */
    final Integer alarmMinutes;
    /** The repeat rule in words, empty when the event does not repeat. */
    final String repeat;

    EventEntry(Device device, int recindex) {
        this.recindex = recindex;
        summary = device.text(LIST, recindex, SUMMARY);
        location = device.text(LIST, recindex, LOCATION);
        note = device.text(LIST, recindex, NOTE);
        start = device.date(LIST, recindex, START);
        end = device.date(LIST, recindex, END);
        alarmMinutes = alarmMinutes(device);
        repeat = repeat(device);
    }

    String identity() {
        return identity(summary, start);
    }

    static String identity(String summary, Long start) {
        return summary + "\n" + start;
    }

    /** The library hands out the low 32 bits of the alarm's milliseconds: enough for its distance from the start. */
    private Integer alarmMinutes(Device device) {
        if (start == null || device.items.countValuesN(LIST, Device.HANDLE, recindex, ALARM) < 1) {
            return null;
        }
        int alarm = device.items.getIntN(LIST, Device.HANDLE, recindex, ALARM, 0);
        return ((int) start.longValue() - alarm) / 60_000;
    }

    private String repeat(Device device) {
        int frequency = device.events.getRepeatIntN(Device.HANDLE, recindex, RepeatField.FREQUENCY);
        if (frequency < RepeatFrequency.DAILY || frequency > RepeatFrequency.YEARLY) {
            return "";
        }
        int interval = device.events.getRepeatIntN(Device.HANDLE, recindex, RepeatField.INTERVAL);
        long endSeconds = device.events.getRepeatDateN(Device.HANDLE, recindex, RepeatField.END);
        int kind = frequency - RepeatFrequency.DAILY;
        return (interval > 1 ? "every " + interval + " " + UNITS.get(kind) : FREQUENCIES.get(kind))
                + (endSeconds > 0 ? " until " + Dates.day(endSeconds * 1000) : "");
    }
}
