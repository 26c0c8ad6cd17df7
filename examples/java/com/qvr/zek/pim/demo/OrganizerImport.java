package com.qvr.zek.pim.demo;

import com.qvr.zek.pim.CommitRequest;
import com.qvr.zek.pim.PIMCodes;
import com.qvr.zek.pim.PIMCodes.Event;
import com.qvr.zek.pim.PIMCodes.RepeatField;
import com.qvr.zek.pim.PIMCodes.RepeatFrequency;
import com.qvr.zek.pim.PIMCodes.ToDo;
import java.io.File;
import java.util.Arrays;
import java.util.HashSet;
import java.util.List;
import java.util.Set;
import javax.microedition.pim.PIMException;

/** Reads a table of events or to-dos and commits every row that the store does not hold yet. */
final class OrganizerImport {
    private static final List<String> YES = Arrays.asList("yes");

    private final Device device;
    private final int listtype;
    private final Set<String> stored = new HashSet<>();
    private final ImportResult result = new ImportResult();

    private OrganizerImport(Device device, int listtype) {
        this.device = device;
        this.listtype = listtype;
    }

    static ImportResult events(Device device, File file) throws DemoException {
        OrganizerImport run = new OrganizerImport(device, PIMCodes.List.EVENT);
        for (int recindex : device.records(run.listtype)) {
            run.stored.add(new EventEntry(device, recindex).identity());
        }
        for (SampleTable.Row row : SampleTable.read(file)) {
            run.take(row, EventEntry.identity(row.text("summary"), row.date("start")), event(row));
        }
        return run.result;
    }

    static ImportResult todos(Device device, File file) throws DemoException {
        OrganizerImport run = new OrganizerImport(device, PIMCodes.List.TODO);
        for (int recindex : device.records(run.listtype)) {
            run.stored.add(new ToDoEntry(device, recindex).identity());
        }
        for (SampleTable.Row row : SampleTable.read(file)) {
            run.take(row, ToDoEntry.identity(row.text("summary"), row.date("due")), todo(row));
        }
        return run.result;
    }

    private static CommitRequest event(SampleTable.Row row) throws DemoException {
        CommitRequest request = new CommitRequest();
        text(request, Event.SUMMARY, row.text("summary"));
        text(request, Event.LOCATION, row.text("location"));
        text(request, Event.NOTE, row.text("note"));
        Long start = row.date("start");
        Integer alarmMinutes = row.number("alarm minutes before");
        Long end = row.date("end");
        number(request, Event.START, start);
        // The store takes a missing end for one in 1900 and moves the start there.
        number(request, Event.END, end == null ? start : end);
        if (start != null && alarmMinutes != null) {
            request.number(Event.ALARM, start - alarmMinutes * 60_000L);
        }
        int frequency = row.choice("repeat", EventEntry.FREQUENCIES);
        if (frequency >= 0) {
            // The frequency comes before the interval, which it resets to 1.
            request.number(RepeatField.FREQUENCY, RepeatFrequency.DAILY + frequency);
            number(request, RepeatField.INTERVAL, row.number("every"));
            number(request, RepeatField.END, row.date("until"));
        }
        return request;
    }

    private static CommitRequest todo(SampleTable.Row row) throws DemoException {
        CommitRequest request = new CommitRequest();
        text(request, ToDo.SUMMARY, row.text("summary"));
        text(request, ToDo.NOTE, row.text("note"));
        number(request, ToDo.DUE, row.date("due"));
        number(request, ToDo.COMPLETION_DATE, row.date("completed on"));
        if (row.choice("completed", YES) == 0) {
            request.number(ToDo.COMPLETED, 1);
        }
        int priority = row.choice("priority", ToDoEntry.PRIORITIES);
        if (priority >= 0) {
            request.number(ToDo.PRIORITY, priority);
        }
        return request;
    }

    private void take(SampleTable.Row row, String identity, CommitRequest request) {
        if (stored.contains(identity)) {
            result.alreadyStored++;
            return;
        }
        try {
            // An event that the store refused comes back as 0.
            if (request.commit(device.items, listtype, PIMCodes.NO_RECORD) < 1) {
                result.refused.add(row.where() + ": the store did not take it; a text may be too long");
                return;
            }
        } catch (PIMException e) {
            result.refused.add(row.where() + ": " + e.getMessage());
            return;
        }
        stored.add(identity);
        result.added++;
    }

    private static void text(CommitRequest request, int field, String text) {
        if (!text.isEmpty()) {
            request.string(field, text);
        }
    }

    private static void number(CommitRequest request, int code, Number value) {
        if (value != null) {
            request.number(code, value.longValue());
        }
    }
}
