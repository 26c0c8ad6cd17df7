package com.qvr.zek.pim.demo;

import com.qvr.zek.pim.PIMCodes;
import java.io.File;
import java.io.FileOutputStream;
import java.io.IOException;
import java.io.OutputStream;
import java.io.PrintStream;

/**
 * Imports contacts, events and to-dos into the three lists and prints what the library reads back.
 *
 * <p>Exit codes: 0 done, 1 some entries were refused, 2 wrong arguments, 3 a file is missing or cannot be read.
 */
public final class Demo {
    private static final int SOME_REFUSED = 1;
    private static final int WRONG_ARGUMENTS = 2;
    private static final int NO_INPUT = 3;

    private static final String SEARCHED = "lighthouse";

    private Demo() {
    }

    /**
     * Runs the demonstration.
     *
     * @param arguments the contacts (.vcf), the events and the to-dos (tables), and the file to write the report to:
     *     the library itself writes to standard output now and then
     */
    public static void main(String[] arguments) throws IOException {
        if (arguments.length != 4) {
            System.err.println("usage: Demo contacts.vcf events.tsv todos.tsv report");
            System.exit(WRONG_ARGUMENTS);
        }
        // The launching script knows whether standard error is a terminal; Java does not.
        boolean inPlace = Boolean.getBoolean("demo.terminal");
        int exit;
        try (OutputStream report = new FileOutputStream(arguments[3], true);
                PrintStream out = new PrintStream(report, false, "UTF-8")) {
            exit = run(new File(arguments[0]), new File(arguments[1]), new File(arguments[2]), inPlace, out);
        } catch (DemoException e) {
            System.err.println("demo: " + e.getMessage());
            exit = NO_INPUT;
        }
        System.exit(exit);
    }

    private static int run(File contacts, File events, File todos, boolean inPlace, PrintStream out)
            throws DemoException {
        Device device = new Device();
        Report report = new Report(device, out);
        sayWhatIsThere(device, out);

        ImportResult importedContacts = new VcardImport(device).run(contacts,
                new Progress("Importing contacts", inPlace));
        ImportResult importedEvents = OrganizerImport.events(device, events);
        ImportResult importedTodos = OrganizerImport.todos(device, todos);
        report.outcome(importedContacts, "contact", contacts);
        report.outcome(importedEvents, "event", events);
        report.outcome(importedTodos, "to-do", todos);

        printLists(device, report);
        printTour(new Tour(device, report, out));
        boolean allTaken = importedContacts.refused.isEmpty() && importedEvents.refused.isEmpty()
                && importedTodos.refused.isEmpty();
        return allTaken ? 0 : SOME_REFUSED;
    }

    private static void sayWhatIsThere(Device device, PrintStream out) {
        int contacts = device.records(PIMCodes.List.CONTACT).size();
        int events = device.records(PIMCodes.List.EVENT).size();
        int todos = device.records(PIMCodes.List.TODO).size();
        if (contacts + events + todos > 0) {
            out.println("The store already holds " + Report.counted(contacts, "contact") + ", "
                    + Report.counted(events, "event") + " and " + Report.counted(todos, "to-do")
                    + "; ./demo --fresh starts over.");
        }
    }

    private static void printLists(Device device, Report report) {
        report.heading(device.listName(PIMCodes.List.CONTACT));
        report.contacts(device.records(PIMCodes.List.CONTACT));
        String[] categories = device.lists.getCategoriesN(PIMCodes.List.CONTACT, Device.HANDLE);
        if (categories.length > 0) {
            report.heading("Contacts in the category " + categories[0]);
            report.contacts(device.contactsIn(categories[0]));
        }
        report.heading("Contacts in no category");
        report.contacts(device.contactsIn(null));
        report.heading(device.listName(PIMCodes.List.EVENT));
        report.events(device.records(PIMCodes.List.EVENT));
        report.heading(device.listName(PIMCodes.List.TODO));
        report.todos(device.records(PIMCodes.List.TODO));
    }

    private static void printTour(Tour tour) {
        tour.search(SEARCHED);
        tour.todosInDateOrder();
        tour.attributesOfOneContact();
        tour.repeatRuleOfOneEvent();
        tour.categoryEditing();
    }
}
