package com.qvr.zek.pim.trust;

import com.qvr.zek.pim.CommitRequest;
import com.qvr.zek.pim.PIMCodes.Contact;
import com.qvr.zek.pim.PIMCodes.Event;
import com.qvr.zek.pim.PIMCodes.List;
import com.qvr.zek.pim.PIMCodes.ToDo;
import com.qvr.zek.pim.PIMItemImpl;
import com.qvr.zek.pim.PIMListImpl;
import java.io.BufferedReader;
import java.io.IOException;
import java.io.InputStreamReader;
import java.io.PrintWriter;
import java.nio.charset.StandardCharsets;
import java.util.ArrayList;
import java.util.HashMap;
import java.util.Map;
import java.util.Random;
import java.util.TreeMap;
import javax.microedition.pim.PIMException;

/**
 * Threads that work on one store at the same time, each on records of its own and all of them on the lists. Every value
 * of a record repeats one number, so that a torn record shows, and a record that somebody else was given, too.
 */
public final class Crowd {
    private static final PIMListImpl lists = new PIMListImpl();
    private static final PIMItemImpl items = new PIMItemImpl();

    private Crowd() {
    }

    /**
     * Arguments: the process's number, its threads, how many seconds they work, and a file for what they own at the end
     * and what they did; standard output is the library's, too. With no arguments, holds the store to what it reads from
     * standard input, which is all that such processes have written.
     */
    public static void main(String[] arguments) throws Exception {
        if (arguments.length == 0) {
            verify();
            return;
        }
        int process = Integer.parseInt(arguments[0]);
        int count = Integer.parseInt(arguments[1]);
        long end = System.nanoTime() + Long.parseLong(arguments[2]) * 1000000000L;
        ArrayList<Worker> workers = new ArrayList<Worker>();
        for (int i = 0; i < count; i++) {
            workers.add(new Worker(process * 100 + i, end));
        }
        for (Worker worker : workers) {
            worker.start();
        }
        boolean failed = false;
        try (PrintWriter report = new PrintWriter(arguments[3], "US-ASCII")) {
            for (Worker worker : workers) {
                worker.join();
                failed |= worker.failure != null;
                if (worker.failure != null) {
                    worker.failure.printStackTrace();
                }
                for (Map.Entry<Long, Integer> record : worker.own.entrySet()) {
                    report.println("own " + record.getKey() + " " + record.getValue());
                }
                for (Map.Entry<String, Integer> done : worker.done.entrySet()) {
                    report.println("did " + done.getKey() + " " + done.getValue());
                }
            }
        }
        System.exit(failed ? 1 : 0);
    }

    private static void verify() throws IOException {
        Map<Long, Integer> owned = new HashMap<Long, Integer>();
        Map<String, Integer> done = new TreeMap<String, Integer>();
        BufferedReader input = new BufferedReader(new InputStreamReader(System.in, StandardCharsets.US_ASCII));
        for (String line = input.readLine(); line != null; line = input.readLine()) {
            String[] words = line.split(" ");
            if (words[0].equals("did")) {
                done.merge(words[1], Integer.valueOf(words[2]), Integer::sum);
            } else if (words[0].equals("own") && owned.put(Long.valueOf(words[1]), Integer.valueOf(words[2])) != null) {
                throw new AssertionError("an index given twice: " + words[1]);
            }
        }
        int found = 0;
        for (int listtype = List.CONTACT; listtype <= List.TODO; listtype++) {
            for (int index = lists.nextRecordN(listtype, 0, -1); index != -1; index =
                    lists.nextRecordN(listtype, 0, index)) {
                Integer expected = owned.get(key(listtype, index));
                require(expected != null, "a record that nobody owns: " + listtype + ", " + index);
                require(numberOf(listtype, index) == expected, "a record with another content: " + index);
                found++;
            }
        }
        require(found == owned.size(), (owned.size() - found) + " commits lost");
        require(!done.isEmpty(), "nobody did anything");
        int operations = 0;
        for (int count : done.values()) {
            operations += count;
        }
        System.out.println("concurrency: " + operations + " operations " + done + ", " + found
                + " records, 0 lost, 0 torn, no index given twice");
    }

    private static void require(boolean holds, String otherwise) {
        if (!holds) {
            throw new AssertionError(otherwise);
        }
    }

    private static long key(int listtype, int index) {
        return listtype * 100000L + index;
    }

    /** The number that all values of a record repeat. */
    private static int numberOf(int listtype, int index) {
        int[][] texts = {{}, {Contact.NOTE, Contact.ORG, Contact.TITLE}, {Event.SUMMARY, Event.NOTE, Event.LOCATION},
                {ToDo.SUMMARY, ToDo.NOTE}};
        int[] dates = {0, Contact.BIRTHDAY, Event.START, ToDo.DUE};
        long number = items.getDateN(listtype, 0, index, dates[listtype], 0) / 1000;
        for (int field : texts[listtype]) {
            String text = items.getStringN(listtype, 0, index, field, 0);
            require(Long.toString(number).equals(text), "torn: " + text + " beside " + number);
        }
        return (int) number;
    }

    private static int commit(int listtype, int index, int number) throws PIMException {
        String text = Integer.toString(number);
        CommitRequest request = new CommitRequest();
        switch (listtype) {
        case List.CONTACT:
            request.string(Contact.NAME, 0, 0, text, text).string(Contact.NOTE, text).string(Contact.ORG, text)
                    .string(Contact.TITLE, text).number(Contact.BIRTHDAY, number * 1000L);
            break;
        case List.EVENT:
            request.string(Event.SUMMARY, text).string(Event.NOTE, text).string(Event.LOCATION, text)
                    .number(Event.START, number * 1000L).number(Event.END, number * 1000L);
            break;
        default:
            request.string(ToDo.SUMMARY, text).string(ToDo.NOTE, text).number(ToDo.DUE, number * 1000L);
            break;
        }
        return request.commit(items, listtype, index);
    }

    private static final class Worker extends Thread {
        final Map<Long, Integer> own = new TreeMap<Long, Integer>();
        final Map<String, Integer> done = new TreeMap<String, Integer>();
        Throwable failure;
        private final int id;
        private final long end;
        private final Random random;
        private int number;

        Worker(int id, long end) {
            this.id = id;
            this.end = end;
            random = new Random(id);
            number = id * 100000;
        }

        @Override
        public void run() {
            try {
                while (System.nanoTime() < end) {
                    int choice = own.size() < 5 ? 0 : random.nextInt(12);
                    if (choice < 2) {
                        add();
                    } else {
                        work(choice);
                    }
                }
            } catch (Throwable thrown) {
                failure = thrown;
            }
        }

        private void add() throws PIMException {
            int listtype = List.CONTACT + random.nextInt(3);
            int index = commit(listtype, -1, ++number);
            require(index > 0, "a new record refused: " + index);
            require(own.put(key(listtype, index), number) == null, "an index given twice: " + index);
            did("adds");
        }

        private void work(int choice) throws PIMException {
            ArrayList<Long> keys = new ArrayList<Long>(own.keySet());
            long key = keys.get(random.nextInt(keys.size()));
            int listtype = (int) (key / 100000);
            int index = (int) (key % 100000);
            switch (choice) {
            case 2:
                require(commit(listtype, index, ++number) == index, "a change refused: " + index);
                own.put(key, number);
                did("changes");
                break;
            case 3:
                require(lists.removeItemN(listtype, 0, index) == 1, "a removal refused: " + index);
                own.remove(key);
                did("removals");
                break;
            case 4:
                editCategory();
                did("categories");
                break;
            case 5:
                lists.nextRecordWithMatchStrN(listtype, 0, -1, "no record says this");
                did("searches");
                break;
            case 6:
            case 7:
                lists.nextRecordN(listtype, 0, index);
                did("steps");
                break;
            default:
                require(numberOf(listtype, index) == own.get(key), "somebody changed record " + index);
                did("reads");
                break;
            }
        }

        // A renaming reads how many categories there are and then looks for that many, so that it may miss one while
        // others add theirs: the category then keeps its old name.
        private void editCategory() {
            String before = "Category " + id;
            String after = before + " renamed";
            lists.addCategoryN(List.CONTACT, 0, before);
            require(lists.isCategoryN(List.CONTACT, 0, before), "a category lost: " + before);
            lists.renameCategoryN(List.CONTACT, 0, before, after);
            require(lists.isCategoryN(List.CONTACT, 0, before) != lists.isCategoryN(List.CONTACT, 0, after),
                    "a category lost while it was renamed: " + before);
            lists.deleteCategoryN(List.CONTACT, 0, before, false);
            lists.deleteCategoryN(List.CONTACT, 0, after, false);
            require(!lists.isCategoryN(List.CONTACT, 0, before) && !lists.isCategoryN(List.CONTACT, 0, after),
                    "a category not deleted: " + before);
        }

        private void did(String what) {
            done.merge(what, 1, Integer::sum);
        }
    }
}
