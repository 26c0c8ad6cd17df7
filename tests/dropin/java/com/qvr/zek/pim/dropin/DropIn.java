package com.qvr.zek.pim.dropin;

import com.qvr.zek.pim.CommitRequest;
import com.qvr.zek.pim.ContactImpl;
import com.qvr.zek.pim.EventImpl;
import com.qvr.zek.pim.PIMCodes.Contact;
import com.qvr.zek.pim.PIMCodes.Event;
import com.qvr.zek.pim.PIMCodes.List;
import com.qvr.zek.pim.PIMCodes.RepeatField;
import com.qvr.zek.pim.PIMCodes.RepeatFrequency;
import com.qvr.zek.pim.PIMCodes.ToDo;
import com.qvr.zek.pim.PIMImpl;
import com.qvr.zek.pim.PIMItemImpl;
import com.qvr.zek.pim.PIMListImpl;
import java.io.FileWriter;
import java.io.IOException;
import java.util.Arrays;
import javax.microedition.pim.PIMException;

/**
 * Reads every field of what replacement stores hold and commits every field to them. What it reads goes to the file in
 * which the stores report what they are given.
 */
public final class DropIn {
    private static final PIMListImpl lists = new PIMListImpl();
    private static final PIMItemImpl items = new PIMItemImpl();

    private DropIn() {
    }

    /** Does all of it; there are no arguments. */
    public static void main(String[] arguments) throws IOException, PIMException {
        readLists();
        readContact(7);
        readEvent(5);
        readToDo(9);
        editCategories();
        commitContacts();
        commitEvents();
        commitToDos();
        remove();
        lists.closePIMListN(List.CONTACT, 0);
    }

    private static void readLists() throws IOException {
        for (int listtype = List.CONTACT; listtype <= List.TODO; listtype++) {
            say(Arrays.toString(new PIMImpl().listPIMListsN(listtype)) + ": " + walk(listtype));
        }
        say("categories: " + Arrays.toString(lists.getCategoriesN(List.CONTACT, 0)));
        say("in Club: " + lists.nextRecordInCategoryN(List.CONTACT, 0, -1, "Club"));
        say("in Band: " + lists.nextRecordInCategoryN(List.CONTACT, 0, -1, "Band"));
        say("in none: " + lists.nextRecordInCategoryN(List.CONTACT, 0, -1, null));
        say("matching: " + lists.nextRecordWithMatchStrN(List.CONTACT, 0, -1, "ada1@EXAMPLE"));
    }

    private static String walk(int listtype) {
        StringBuilder walked = new StringBuilder();
        for (int index = lists.nextRecordN(listtype, 0, -1); index != -1; index =
                lists.nextRecordN(listtype, 0, index)) {
            walked.append(' ').append(index);
        }
        return walked.toString().trim();
    }

    private static void readContact(int contact) throws IOException {
        say("contact " + contact + ": fields " + Arrays.toString(items.getFieldsN(List.CONTACT, 0, contact)));
        for (int field : new int[] {Contact.EMAIL, Contact.NICKNAME, Contact.NOTE, Contact.ORG, Contact.TEL,
                Contact.TITLE, Contact.URL}) {
            for (int i = 0; i < items.countValuesN(List.CONTACT, 0, contact, field); i++) {
                say("  field " + field + ": " + items.getStringN(List.CONTACT, 0, contact, field, i) + attribute(
                        contact, field, i));
            }
        }
        for (int field : new int[] {Contact.NAME, Contact.ADDR}) {
            for (int i = 0; i < items.countValuesN(List.CONTACT, 0, contact, field); i++) {
                say("  field " + field + ": " + Arrays.toString(
                        items.getStringArrayN(List.CONTACT, 0, contact, field, i)) + attribute(contact, field, i));
            }
        }
        for (int field : new int[] {Contact.BIRTHDAY, Contact.REVISION}) {
            say("  field " + field + ": " + items.getDateN(List.CONTACT, 0, contact, field, 0));
        }
        for (int field : new int[] {Contact.ADDR, Contact.EMAIL, Contact.TEL, Contact.URL}) {
            say("  field " + field + " preferred: " + new ContactImpl().getPreferredIndexN(0, contact, field));
        }
        say("  categories: " + Arrays.toString(items.getCategoriesN(List.CONTACT, 0, contact)));
    }

    private static String attribute(int contact, int field, int index) {
        return ", attribute 0x" + Integer.toHexString(items.getAttributesN(List.CONTACT, 0, contact, field, index));
    }

    private static void readEvent(int event) throws IOException {
        say("event " + event + ": fields " + Arrays.toString(items.getFieldsN(List.EVENT, 0, event)));
        for (int field : new int[] {Event.LOCATION, Event.NOTE, Event.SUMMARY}) {
            say("  field " + field + ": " + items.getStringN(List.EVENT, 0, event, field, 0));
        }
        for (int field : new int[] {Event.END, Event.REVISION, Event.START}) {
            say("  field " + field + ": " + items.getDateN(List.EVENT, 0, event, field, 0));
        }
        say("  field 100: " + items.getIntN(List.EVENT, 0, event, Event.ALARM, 0));
        EventImpl repeated = new EventImpl();
        say("  repeat fields " + Arrays.toString(repeated.getRepeatFieldsN(0, event)) + ": frequency "
                + repeated.getRepeatIntN(0, event, RepeatField.FREQUENCY) + ", interval "
                + repeated.getRepeatIntN(0, event, RepeatField.INTERVAL) + ", end "
                + repeated.getRepeatDateN(0, event, RepeatField.END));
    }

    private static void readToDo(int todo) throws IOException {
        say("to-do " + todo + ": fields " + Arrays.toString(items.getFieldsN(List.TODO, 0, todo)));
        for (int field : new int[] {ToDo.NOTE, ToDo.SUMMARY}) {
            say("  field " + field + ": " + items.getStringN(List.TODO, 0, todo, field, 0));
        }
        for (int field : new int[] {ToDo.COMPLETION_DATE, ToDo.DUE, ToDo.REVISION}) {
            say("  field " + field + ": " + items.getDateN(List.TODO, 0, todo, field, 0));
        }
        say("  field 101: " + items.getBooleanN(List.TODO, 0, todo, ToDo.COMPLETED, 0));
        say("  field 105: " + items.getIntN(List.TODO, 0, todo, ToDo.PRIORITY, 0));
    }

    private static void editCategories() throws IOException {
        lists.addCategoryN(List.CONTACT, 0, "Choir");
        lists.renameCategoryN(List.CONTACT, 0, "Club", "Union");
        say("categories: " + Arrays.toString(lists.getCategoriesN(List.CONTACT, 0)));
    }

    private static void commitContacts() throws IOException, PIMException {
        CommitRequest everything = new CommitRequest()
                .string(Contact.NAME, 0, 0, "Hopper", "Grace")
                .string(Contact.NICKNAME, "Amazing")
                .string(Contact.TITLE, "Admiral")
                .string(Contact.ORG, "Navy")
                .string(Contact.NOTE, "Nanoseconds")
                .string(Contact.ADDR, 0, Contact.ATTR_WORK, "1", "2", "3", "4", "5", "6", "7")
                .string(Contact.ADDR, 1, Contact.ATTR_OTHER, "b", "e", "s", "l", "r", "p", "c")
                .string(Contact.EMAIL, 0, Contact.ATTR_EMAIL_PRIVATE, "g@example.org")
                .string(Contact.EMAIL, 1, Contact.ATTR_EMAIL_BUSINESS, "h@example.org")
                .string(Contact.TEL, 0, Contact.ATTR_OTHER, "030")
                .string(Contact.TEL, 1, Contact.ATTR_MOBILE_PRIVATE, "0170")
                .number(Contact.BIRTHDAY, -1990137600000L)
                .number(Contact.REVISION, 1700000000000L)
                .category("Choir");
        for (int slot = 0; slot < 5; slot++) {
            everything.string(Contact.URL, slot, Contact.ATTR_HOMEPAGE_BUSINESS, "https://example.org/" + slot);
        }
        say("committed: " + everything.commit(items, List.CONTACT, -1));
        say("committed: " + new CommitRequest().string(Contact.NICKNAME, "Enchantress").string(Contact.TEL, 0,
                Contact.ATTR_FAX, "040").commit(items, List.CONTACT, 7));
    }

    private static void commitEvents() throws IOException, PIMException {
        say("committed: " + new CommitRequest()
                .string(Event.SUMMARY, "Launch")
                .string(Event.NOTE, "Sound check first")
                .string(Event.LOCATION, "Pier")
                .number(Event.START, 1700000000000L)
                .number(Event.END, 1700003600000L)
                .number(Event.ALARM, 1699990000000L)
                .number(Event.REVISION, 1600000000000L)
                .number(RepeatField.FREQUENCY, RepeatFrequency.WEEKLY)
                .number(RepeatField.INTERVAL, 2)
                .number(RepeatField.END, 1710000000000L)
                .commit(items, List.EVENT, -1));
        say("committed: " + new CommitRequest().string(Event.SUMMARY, "Encore").commit(items, List.EVENT, 5));
    }

    private static void commitToDos() throws IOException, PIMException {
        say("committed: " + new CommitRequest()
                .string(ToDo.SUMMARY, "Tune")
                .string(ToDo.NOTE, "Down half a step")
                .number(ToDo.COMPLETED, 1)
                .number(ToDo.COMPLETION_DATE, 1700000000000L)
                .number(ToDo.DUE, 1700003600000L)
                .number(ToDo.PRIORITY, 1)
                .number(ToDo.REVISION, 1600000000000L)
                .commit(items, List.TODO, -1));
        say("committed: " + new CommitRequest().string(ToDo.SUMMARY, "Rest").commit(items, List.TODO, 9));
    }

    private static void remove() throws IOException {
        say("removed: " + lists.removeItemN(List.CONTACT, 0, 7) + " " + lists.removeItemN(List.EVENT, 0, 5) + " "
                + lists.removeItemN(List.TODO, 0, 9));
        lists.deleteCategoryN(List.CONTACT, 0, "Choir", true);
        for (int listtype = List.CONTACT; listtype <= List.TODO; listtype++) {
            say("left: " + walk(listtype));
        }
    }

    private static void say(String line) throws IOException {
        try (FileWriter report = new FileWriter(System.getenv("DROPIN_REPORT"), true)) {
            report.write(line + "\n");
        }
    }
}
