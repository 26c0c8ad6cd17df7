package com.qvr.zek.pim.demo;

import com.qvr.zek.pim.PIMCodes;
import java.io.File;
import java.io.PrintStream;
import java.util.ArrayList;
import java.util.Collections;
import java.util.List;

/** Prints the three lists as the library reads them back, in tables 132 characters wide. */
final class Report {
    private static final int LABEL_WIDTH = 15;
    private static final int NOTE_CHARACTERS = 90;

    private final Device device;
    private final PrintStream out;

    Report(Device device, PrintStream out) {
        this.device = device;
        this.out = out;
    }

    void heading(String text) {
        out.println();
        out.println(text);
        out.println(String.join("", Collections.nCopies(Table.width(text), "=")));
    }

    void contacts(List<Integer> recindexes) {
        Table table = new Table(out, "#", 5, "Name", 20, "Phones", 32, "E-mail and web", 28, "Addresses", 18,
                "Note", 19);
        for (int recindex : recindexes) {
            ContactCard card = new ContactCard(device, recindex);
            List<String> mailsAndPages = new ArrayList<>();
            card.mails.forEach(mail -> mailsAndPages.add(mail.text));
            card.pages.forEach(page -> mailsAndPages.add(page.text));
            table.row(recindex, who(card), aligned(card.phones), mailsAndPages, addresses(card.addresses), about(card));
        }
        out.println(counted(recindexes.size(), "contact"));
    }

    void events(List<Integer> recindexes) {
        Table table = new Table(out, "#", 5, "Summary", 22, "Start", 16, "End", 16, "Location", 15,
                "Alarm before", 12, "Repeats", 15, "Note", 17);
        for (int recindex : recindexes) {
            EventEntry event = new EventEntry(device, recindex);
            table.row(recindex, event.summary, Dates.minute(event.start), Dates.minute(event.end), event.location,
                    event.alarmMinutes == null ? "" : event.alarmMinutes + " min", event.repeat,
                    shortened(event.note));
        }
        out.println(counted(recindexes.size(), "event"));
    }

    void todos(List<Integer> recindexes) {
        Table table = new Table(out, "#", 5, "Summary", 34, "Due", 16, "Priority", 8, "Done", 4, "Done on", 16,
                "Note", 33);
        for (int recindex : recindexes) {
            ToDoEntry todo = new ToDoEntry(device, recindex);
            table.row(recindex, todo.summary, Dates.minute(todo.due), todo.priority, todo.completed ? "yes" : "",
                    Dates.minute(todo.completedOn), shortened(todo.note));
        }
        out.println(counted(recindexes.size(), "to-do"));
    }

    /** What became of a file's entries. */
    void outcome(ImportResult result, String what, File file) {
        out.println(counted(result.added, what) + " imported from " + file + ", " + result.alreadyStored
                + " already there, " + result.refused.size() + " refused");
        result.refused.forEach(line -> out.println("  refused: " + line));
        result.leftOut.forEach(line -> out.println("  left out: " + line));
    }

    static String counted(int count, String what) {
        return count + " " + what + (count == 1 ? "" : "s");
    }

    String label(int field) {
        return device.lists.getFieldLabelN(PIMCodes.List.CONTACT, Device.HANDLE, field);
    }

    private static List<String> who(ContactCard card) {
        List<String> lines = new ArrayList<>();
        addIfGiven(lines, "", card.name());
        addIfGiven(lines, "", card.nickname.isEmpty() ? "" : "\u201c" + card.nickname + "\u201d");
        addIfGiven(lines, "", card.title);
        addIfGiven(lines, "", card.organisation);
        addIfGiven(lines, "born ", Dates.day(card.birthday));
        return lines;
    }

    private static List<String> about(ContactCard card) {
        List<String> lines = new ArrayList<>();
        if (!card.categories.isEmpty()) {
            lines.add("[" + String.join(", ", card.categories) + "]");
        }
        addIfGiven(lines, "", shortened(card.note));
        return lines;
    }

    private static List<String> aligned(List<ContactCard.Labelled> values) {
        List<String> lines = new ArrayList<>();
        values.forEach(value -> lines.add(String.format("%-" + LABEL_WIDTH + "s %s", value.label, value.text)));
        return lines;
    }

    private static List<String> addresses(List<ContactCard.Labelled> values) {
        List<String> lines = new ArrayList<>();
        values.forEach(value -> lines.add((value.label.isEmpty() ? "" : value.label + ": ") + value.text));
        return lines;
    }

    private static void addIfGiven(List<String> lines, String before, String text) {
        if (!text.isEmpty()) {
            lines.add(before + text);
        }
    }

    private static String shortened(String text) {
        String line = text.replaceAll("\\s+", " ");
        int length = line.codePointCount(0, line.length());
        return length <= NOTE_CHARACTERS ? line
                : line.substring(0, line.offsetByCodePoints(0, NOTE_CHARACTERS)) + "\u2026";
    }
}
