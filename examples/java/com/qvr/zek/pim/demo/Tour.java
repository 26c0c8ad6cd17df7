package com.qvr.zek.pim.demo;

import static com.qvr.zek.pim.PIMCodes.Contact.*;

import com.qvr.zek.pim.PIMCodes;
import com.qvr.zek.pim.PIMCodes.RepeatField;
import java.io.PrintStream;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Comparator;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Locale;
import java.util.Map;

/** What the library can do beyond listing, shown on what the store holds; it leaves the store as it found it. */
final class Tour {
    private static final Map<Integer, String> REPEAT_FIELDS = new LinkedHashMap<>();

    static {
        REPEAT_FIELDS.put(RepeatField.FREQUENCY, "FREQUENCY");
        REPEAT_FIELDS.put(RepeatField.INTERVAL, "INTERVAL");
        REPEAT_FIELDS.put(RepeatField.END, "END");
    }

    private final Device device;
    private final Report report;
    private final PrintStream out;

    Tour(Device device, Report report, PrintStream out) {
        this.device = device;
        this.report = report;
        this.out = out;
    }

    void search(String text) {
        report.heading("Search for \"" + text + "\"");
        List<Integer> found = device.recordsMatching(PIMCodes.List.CONTACT, text);
        Table table = new Table(out, "#", 5, "Name", 32, "Found in", 12, "Text", 60);
        int byEmptyText = 0;
        for (int recindex : found) {
            ContactCard card = new ContactCard(device, recindex);
            ContactCard.Labelled hit = firstHit(card, text);
            if (hit == null) {
                byEmptyText++;
            } else {
                table.row(recindex, card.name(), hit.label, hit.text);
            }
        }
        out.println("Matching contacts: " + found.size() + ", " + byEmptyText + " of them only because one of the"
                + " searched fields is empty, and an empty field matches every text.");
    }

    /** The first text that holds the searched one, or null when only an empty text or the end of a long note did. */
    private ContactCard.Labelled firstHit(ContactCard card, String text) {
        String wanted = text.toLowerCase(Locale.ROOT);
        for (ContactCard.Labelled searched : card.searchedTexts(device)) {
            if (!searched.text.isEmpty() && searched.text.toLowerCase(Locale.ROOT).contains(wanted)) {
                return searched;
            }
        }
        return null;
    }

    void todosInDateOrder() {
        report.heading("To-dos by due date");
        report.todos(device.todosByDueDate());
    }

    void categoryEditing() {
        report.heading("Categories");
        String added = unusedCategory("Book club");
        String renamed = unusedCategory("Reading circle");
        Table table = new Table(out, "Step", 34, "Categories", 80);
        table.row("as they are", categories());
        device.lists.addCategoryN(PIMCodes.List.CONTACT, Device.HANDLE, added);
        table.row("\"" + added + "\" added", categories());
        device.lists.renameCategoryN(PIMCodes.List.CONTACT, Device.HANDLE, added, renamed);
        table.row("renamed to \"" + renamed + "\"", categories());
        device.lists.deleteCategoryN(PIMCodes.List.CONTACT, Device.HANDLE, renamed, false);
        table.row("deleted again", categories());
    }

    void attributesOfOneContact() {
        ContactCard card = device.records(PIMCodes.List.CONTACT).stream()
                .map(recindex -> new ContactCard(device, recindex))
                .max(Comparator.comparingInt(contact -> contact.phones.size())).orElse(null);
        if (card == null) {
            return;
        }
        report.heading("Attributes of " + card.name());
        Table table = new Table(out, "Field", 10, "Attribute", 18, "Value", 60, "Preferred", 9);
        attributes(table, card, TEL, card.phones);
        attributes(table, card, EMAIL, card.mails);
        attributes(table, card, ADDR, card.addresses);
        attributes(table, card, URL, card.pages);
        List<String> supported = new ArrayList<>();
        for (int attribute : device.lists.getSupportedAttributesN(PIMCodes.List.CONTACT, Device.HANDLE, TEL)) {
            supported.add(device.lists.getAttributeLabelN(PIMCodes.List.CONTACT, Device.HANDLE, attribute));
        }
        out.println("A phone number can be: " + String.join(", ", supported));
    }

    private void attributes(Table table, ContactCard card, int field, List<ContactCard.Labelled> values) {
        int preferred = device.contacts.getPreferredIndexN(Device.HANDLE, card.recindex, field);
        for (int index = 0; index < values.size(); index++) {
            table.row(report.label(field), values.get(index).label, values.get(index).text,
                    index == preferred ? "yes" : "");
        }
    }

    void repeatRuleOfOneEvent() {
        for (int recindex : device.records(PIMCodes.List.EVENT)) {
            int[] fields = device.events.getRepeatFieldsN(Device.HANDLE, recindex);
            if (fields.length > 0 && fields[0] == RepeatField.END) {
                repeatRule(new EventEntry(device, recindex), fields);
                return;
            }
        }
    }

    private void repeatRule(EventEntry event, int[] fields) {
        report.heading("Repeat rule of \"" + event.summary + "\"");
        out.println("in words:    " + event.repeat);
        out.println("field codes: " + Arrays.toString(fields));
        for (Map.Entry<Integer, String> field : REPEAT_FIELDS.entrySet()) {
            long value = field.getKey() == RepeatField.END
                    ? device.events.getRepeatDateN(Device.HANDLE, event.recindex, field.getKey())
                    : device.events.getRepeatIntN(Device.HANDLE, event.recindex, field.getKey());
            out.printf("%-12s %d%n", field.getValue() + ":", value);
        }
    }

    private String unusedCategory(String name) {
        String unused = name;
        for (int number = 2; device.lists.isCategoryN(PIMCodes.List.CONTACT, Device.HANDLE, unused); number++) {
            unused = name + " " + number;
        }
        return unused;
    }

    private String categories() {
        return String.join(", ", device.lists.getCategoriesN(PIMCodes.List.CONTACT, Device.HANDLE));
    }
}
