package com.qvr.zek.pim.demo;

import static com.qvr.zek.pim.PIMCodes.ToDo.*;

import com.qvr.zek.pim.PIMCodes;
import java.util.Arrays;
import java.util.List;

/** One stored to-do as the library reads it back. */
final class ToDoEntry {
    /** The words for the priorities of the store, from 0 on. */
    static final List<String> PRIORITIES = Arrays.asList("low", "normal", "high");

    private static final int LIST = PIMCodes.List.TODO;

    final int recindex;
    final String summary;
    final String note;
    final Long due;
    final Long completedOn;
    final boolean completed;
    final String priority;

    ToDoEntry(Device device, int recindex) {
        this.recindex = recindex;
        summary = device.text(LIST, recindex, SUMMARY);
        note = device.text(LIST, recindex, NOTE);
        due = device.date(LIST, recindex, DUE);
        completedOn = device.date(LIST, recindex, COMPLETION_DATE);
        completed = device.items.getBooleanN(LIST, Device.HANDLE, recindex, COMPLETED, 0);
        priority = device.items.countValuesN(LIST, Device.HANDLE, recindex, PRIORITY) > 0
                ? PRIORITIES.get(device.items.getIntN(LIST, Device.HANDLE, recindex, PRIORITY, 0)) : "";
    }

    String identity() {
        return identity(summary, due);
    }

    static String identity(String summary, Long due) {
        return summary + "\n" + due;
    }
}
